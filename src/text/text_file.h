#pragma once

#include "platform/helpers.h"
#include "platform/text_block.h"
#include "text/line_marks.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarnwick {

// The two blocks that reading a file needs: its owner keeps them from file to file.
struct TextMemory {
    TextBlock text;
    TextBlock compressed;
};

// The text of one file on its way into memory.
struct TextFile {
    // How the bytes are packed, by the name.
    static constexpr std::int32_t kPlain = 0;
    static constexpr std::int32_t kTwoCharacterSuffix = 1; // part.stp.Z
    static constexpr std::int32_t kOneCharacterSuffix = 2; // part.stpz

    std::string path; // rewritten when the file is there only under the name of its twin
    std::int32_t compression = kPlain;
    double readSeconds = 0;
    double inflateSeconds = 0;
    char* text = nullptr; // in the memory that it was read into, with TextBlock::kPadding zeros after it
    std::size_t size = 0; // its characters
    LineMarks* lines = nullptr;    // to be filled for a large plain file; null when nobody wants them
    const char* problem = nullptr; // why it wasn't read, when that was told; a phrase
};

enum class TextFileResult { kRead, kNotOpened, kNoRoom };

// Reads the file, inflating what its name says is compressed, under its name or else under that of its
// compressed or plain twin. kNotOpened when there is no such file, it is too large, the system can't open or
// read it, or memory for its bytes runs out; kNoRoom when there is no room to inflate them. All but the first
// are told on the console. `helpers` take part in the reading of a large file; may be null.
TextFileResult ReadTextFile(TextFile* file, TextMemory* memory, Helpers* helpers = nullptr);

// Inflates a zlib or gzip stream into the text block; see InflateBytes for `isMember`. False, and told on the
// console under the file's path, when there is no room or no memory for what may come out.
bool InflateText(const unsigned char* data, std::uint32_t size, bool isMember, TextFile* file,
                 TextMemory* memory);

} // namespace tarnwick
