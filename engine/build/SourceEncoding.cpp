#include "engine/build/SourceEncoding.h"

#include "engine/build/TextFile.h"
#include "text/CaseFold.h"

namespace qel::engine {

std::string DetectEncoding(const std::filesystem::path& path) {
    std::ifstream file = OpenTextFile(path);
    bool isUtf8 = true;
    // Words of Hebrew are runs of high bytes; accents of western languages stand among plain letters.
    std::size_t inRuns = 0, alone = 0;
    std::size_t number = 0;
    for (std::string line; std::getline(file, line); ++number) {
        if (number == 0 && (line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF"))) {
            return "auto";
        }
        isUtf8 = isUtf8 && IsValidUtf8(line);
        for (std::size_t i = 0; i < line.size(); ++i) {
            const auto isLetter = [&](std::size_t at) {
                return at < line.size() && static_cast<unsigned char>(line[at]) >= 0xE0;
            };
            if (isLetter(i)) {
                ++(isLetter(i - 1) || isLetter(i + 1) ? inRuns : alone);
            }
        }
    }
    return isUtf8 ? "auto" : inRuns > alone ? "windows-1255" : "windows-1252";
}

} // namespace qel::engine
