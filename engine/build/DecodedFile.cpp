#include "engine/build/DecodedFile.h"

#include "engine/build/TextConversion.h"
#include "engine/build/TextFile.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::engine {

namespace {

/// Decodes a stream chunk by chunk.
class Decoder : public std::streambuf {
public:
    Decoder(std::istream& source, std::unique_ptr<TextConversion> conversion)
        : source_(source), conversion_(std::move(conversion)) {}
    ~Decoder() override = default;
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

protected:
    int_type underflow() override {
        for (bool isRead = true; isRead;) {
            isRead = ReadMore();
            text_ = conversion_->Take(bytes_, !isRead);
            if (!text_.empty()) {
                setg(text_.data(), text_.data(), text_.data() + text_.size());
                return traits_type::to_int_type(text_.front());
            }
        }
        return traits_type::eof();
    }

private:
    static constexpr std::size_t chunkSize = 1 << 16;

    /// Appends the next bytes; false at the end of the file.
    bool ReadMore() {
        const std::size_t left = bytes_.size();
        bytes_.resize(left + chunkSize);
        source_.read(bytes_.data() + left, chunkSize);
        bytes_.resize(left + static_cast<std::size_t>(source_.gcount()));
        return bytes_.size() > left;
    }

    std::istream& source_;
    std::unique_ptr<TextConversion> conversion_;
    std::vector<char> bytes_; ///< read and not converted
    std::string text_;
};

std::uint64_t SizeOf(const std::filesystem::path& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

void RefuseWorkbook(std::string_view start, const std::string& fileName) {
    constexpr std::string_view zip = "PK\x03\x04", oldWorkbook = "\xD0\xCF\x11\xE0";
    if (start.starts_with(zip) || start.starts_with(oldWorkbook)) {
        throw EngineError(
            ErrorKind::InvalidData,
            fmt::format("{}: is a workbook or an archive, not CSV; save the sheet as CSV", fileName));
    }
}

/// The encoding of a file that begins with these bytes.
std::string EncodingOf(std::string_view start, const std::string& encoding) {
    const bool hasMark = start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF");
    return !encoding.empty() ? encoding : hasMark ? "UTF-16" : "UTF-8";
}

} // namespace

DecodedFile::DecodedFile(const std::filesystem::path& path, const std::string& encoding)
    : file_(OpenTextFile(path)), size_(SizeOf(path)), stream_(&file_) {
    std::array<char, 4> start = {};
    file_.read(start.data(), start.size());
    const std::string_view read(start.data(), static_cast<std::size_t>(file_.gcount()));
    file_.clear();
    file_.seekg(0);
    RefuseWorkbook(read, PathToUtf8(path));
    const std::string from = EncodingOf(read, encoding);
    if (EqualIgnoringCase(from, "UTF-8")) {
        return;
    }
    auto conversion = ConversionFrom(from);
    if (conversion == nullptr) {
        throw EngineError(
            ErrorKind::InvalidData,
            fmt::format("{}: this machine cannot read the encoding \"{}\"", PathToUtf8(path), from));
    }
    encoding_ = from;
    decoder_ = std::make_unique<Decoder>(file_, std::move(conversion));
    decoded_ = std::make_unique<std::istream>(decoder_.get());
    stream_ = decoded_.get();
}

bool DecodedFile::CanSeek(const std::filesystem::path& path, const std::string& encoding) {
    std::array<char, 2> start = {};
    std::ifstream file = OpenTextFile(path);
    file.read(start.data(), start.size());
    const std::string name =
        FoldCase(EncodingOf({start.data(), static_cast<std::size_t>(file.gcount())}, encoding));
    return name == "utf-8" || name.starts_with("windows-125") || name.starts_with("cp125") ||
           name.starts_with("iso-8859-");
}

void DecodedFile::SeekTo(std::uint64_t offset) {
    file_.clear();
    file_.seekg(static_cast<std::streamoff>(offset));
    if (decoder_) {
        decoder_ = std::make_unique<Decoder>(file_, ConversionFrom(encoding_));
        decoded_->rdbuf(decoder_.get());
    }
}

} // namespace qel::engine
