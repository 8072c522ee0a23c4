#include "engine/storage/DetailTable.h"

#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <cstring>

namespace qel::engine {

namespace {

std::uint64_t NumberAt(const MappedSection& section, std::uint64_t index, std::uint8_t width) {
    std::uint64_t number = 0; // the file and the machine are little-endian
    std::memcpy(&number, section.Bytes(index * width, width), width);
    return number;
}

void Require(bool isRight, const char* fault) {
    if (!isRight) {
        throw EngineError(ErrorKind::DamagedFile, fmt::format("cube file: {}", fault));
    }
}

} // namespace

std::uint8_t BytesFor(std::uint64_t count) {
    std::uint8_t bytes = 1;
    while (bytes < 4 && count > std::uint64_t{1} << 8U * bytes) {
        ++bytes;
    }
    return bytes;
}

std::uint32_t DetailTable::FactOf(std::size_t projection, std::uint64_t row) const {
    const std::uint64_t fact = NumberAt(facts_[projection], row, factWidth_);
    Require(fact < factCount_, "a row of the details has a fact that does not exist");
    return static_cast<std::uint32_t>(fact);
}

std::string_view DetailTable::Text(std::size_t column, std::uint32_t fact) const {
    const DetailColumn& kept = columns_[column];
    return TextAt(column, kept.codeWidth == 0
                              ? fact
                              : static_cast<std::uint32_t>(NumberAt(kept.codes, fact, kept.codeWidth)));
}

std::string_view DetailTable::TextAt(std::size_t column, std::uint32_t text) const {
    const DetailColumn& kept = columns_[column];
    Require(text < kept.texts, "a fact has a detail that does not exist");
    const std::uint64_t begin = NumberAt(kept.offsets, text, kept.offsetWidth);
    const std::uint64_t end = NumberAt(kept.offsets, std::uint64_t{text} + 1, kept.offsetWidth);
    Require(begin <= end, "the places of the details are not in order");
    const auto* const bytes = reinterpret_cast<const char*>(kept.bytes.Bytes(begin, end - begin));
    return {bytes, end - begin};
}

std::uint64_t DetailTable::RunCount() const { return runs_.Size() / sizeof(DetailRun); }

DetailRun DetailTable::RunAt(std::uint64_t index) const {
    DetailRun run;
    std::memcpy(&run, runs_.Bytes(index * sizeof(DetailRun), sizeof(DetailRun)), sizeof(DetailRun));
    return run;
}

SourceLine DetailTable::LineOf(std::uint32_t fact) const {
    std::uint64_t first = 0, last = RunCount(); // the last run that begins at or before the fact
    while (last - first > 1) {
        const std::uint64_t middle = first + (last - first) / 2;
        (RunAt(middle).first <= fact ? first : last) = middle;
    }
    Require(last > 0 && RunAt(first).first <= fact, "the lines of the details are not in order");
    const DetailRun run = RunAt(first);
    Require(run.file < files_.size(), "a line of the details is of a file that does not exist");
    return {run.file, run.line + (fact - run.first)};
}

std::string DetailTable::FindFault() const {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        for (std::uint32_t text = 0; text < columns_[column].texts; ++text) {
            if (!IsValidUtf8(TextAt(column, text))) {
                return fmt::format("the detail {} has a text that is no UTF-8", columns_[column].name);
            }
        }
        for (std::uint64_t fact = 0; fact < factCount_ && columns_[column].codeWidth != 0; ++fact) {
            Text(column, static_cast<std::uint32_t>(fact));
        }
    }
    for (std::uint64_t index = 0; index < RunCount(); ++index) {
        const DetailRun run = RunAt(index);
        const bool isFirst = index == 0;
        if (run.first >= factCount_ || run.file >= files_.size() || (isFirst && run.first != 0) ||
            (!isFirst && run.first <= RunAt(index - 1).first)) {
            return "the lines of the details are not in order";
        }
    }
    return RunCount() == 0 && factCount_ != 0 ? "the details have no lines" : "";
}

} // namespace qel::engine
