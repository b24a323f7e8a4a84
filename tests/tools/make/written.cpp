#include "written.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace tarnwick::make {

P21File Parse(std::string text) {
    const P21File file = test::ReadP21(std::move(text));
    EXPECT_EQ(file.faults, std::vector<std::string>());
    std::size_t lines = 0;
    for (std::size_t i = file.text->find("\n#"); i != std::string::npos; i = file.text->find("\n#", i + 1)) {
        ++lines;
    }
    EXPECT_EQ(lines, file.entities.size());
    return file;
}

std::vector<int> IdsOf(const P21File& file, std::string_view keyword) {
    std::vector<int> ids;
    for (const auto& [id, entity] : file.entities) {
        if (entity.Keyword() == keyword) { ids.push_back(id); }
    }
    return ids;
}

std::string_view KeywordOf(const P21File& file, int id) {
    return file.entities.at(id).Keyword();
}

const std::vector<P21Value>& ArgumentsOf(const P21File& file, int id) {
    return file.entities.at(id).records[0].arguments;
}

std::vector<double> Numbers(const P21Value& list) {
    std::vector<double> numbers;
    for (const P21Value& item : list.items) { numbers.push_back(std::strtod(item.text.data(), nullptr)); }
    return numbers;
}

std::vector<std::vector<double>> Rows(const P21Value& lists) {
    std::vector<std::vector<double>> rows;
    for (const P21Value& list : lists.items) { rows.push_back(Numbers(list)); }
    return rows;
}

} // namespace tarnwick::make
