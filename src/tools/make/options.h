#pragma once

#include <CLI/CLI.hpp>

#include <map>
#include <string>

// What the subcommands have in common.
namespace tarnwick::make {

// An option whose value is one of a few words.
template <class Value, class Target>
CLI::Option* AddChoice(CLI::App* app, const std::string& name, Target* target,
                       const std::map<std::string, Value>& words, const std::string& help) {
    std::string list;
    for (const auto& [word, value] : words) { list += (list.empty() ? "" : "|") + word; }
    const auto store = [target, words](const std::string& word) { *target = words.at(word); };
    return app->add_option_function<std::string>(name, store, help)
        ->check(CLI::IsMember(words))
        ->option_text(list);
}

// A number with its limits; a negative one is refused, not wrapped round.
template <class Value>
CLI::Option* AddNumber(CLI::App* app, const std::string& name, Value* target, long long least, long long most,
                       const std::string& help) {
    return app->add_option(name, *target, help)->check(CLI::Range(least, most))->option_text("N");
}

} // namespace tarnwick::make
