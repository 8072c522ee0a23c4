#include "engine/build/DecodedFile.h"

#include "engine/build/TextFile.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <iconv.h>
#include <string_view>
#include <vector>

namespace qel::engine {

namespace {

/// Decodes a stream chunk by chunk.
class Decoder : public std::streambuf {
public:
    Decoder(std::istream& source, iconv_t conversion) : source_(source), conversion_(conversion) {}
    ~Decoder() override { ::iconv_close(conversion_); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

protected:
    int_type underflow() override {
        for (bool isRead = true; isRead;) {
            isRead = ReadMore();
            Convert(!isRead);
            if (!text_.empty()) {
                setg(text_.data(), text_.data(), text_.data() + text_.size());
                return traits_type::to_int_type(text_.front());
            }
        }
        return traits_type::eof();
    }

private:
    static constexpr std::size_t chunkSize = 1 << 16;
    static constexpr char notUtf8 = '\xFF';

    /// Appends the next bytes; false at the end of the file.
    bool ReadMore() {
        const std::size_t left = bytes_.size();
        bytes_.resize(left + chunkSize);
        source_.read(bytes_.data() + left, chunkSize);
        bytes_.resize(left + static_cast<std::size_t>(source_.gcount()));
        return bytes_.size() > left;
    }

    /// Converts what is complete, at the end of the file everything.
    void Convert(bool isAtEnd) {
        text_.resize(bytes_.size() * 4 + 4); // the most that UTF-8 needs
        char* in = bytes_.data();
        std::size_t inLeft = bytes_.size();
        char* out = text_.data();
        std::size_t outLeft = text_.size();
        while (inLeft > 0 &&
               ::iconv(conversion_, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
            if (errno == EINVAL && !isAtEnd) {
                break; // the rest of the character is in the next chunk
            }
            ++in;
            --inLeft;
            *out++ = notUtf8;
            --outLeft;
        }
        text_.resize(text_.size() - outLeft);
        bytes_.erase(bytes_.begin(), bytes_.end() - static_cast<std::ptrdiff_t>(inLeft));
    }

    std::istream& source_;
    iconv_t conversion_;
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

} // namespace

DecodedFile::DecodedFile(const std::filesystem::path& path, const std::string& encoding)
    : file_(OpenTextFile(path)), size_(SizeOf(path)), stream_(&file_) {
    std::array<char, 4> start = {};
    file_.read(start.data(), start.size());
    const std::string_view read(start.data(), static_cast<std::size_t>(file_.gcount()));
    file_.clear();
    file_.seekg(0);
    RefuseWorkbook(read, PathToUtf8(path));
    const bool hasMark = read.starts_with("\xFF\xFE") || read.starts_with("\xFE\xFF");
    const std::string from = !encoding.empty() ? encoding : hasMark ? "UTF-16" : "UTF-8";
    if (EqualIgnoringCase(from, "UTF-8")) {
        return;
    }
    const iconv_t conversion = ::iconv_open("UTF-8", from.c_str());
    if (conversion ==
        reinterpret_cast<iconv_t>(-1)) { // NOLINT(performance-no-int-to-ptr): iconv's own failure
        throw EngineError(
            ErrorKind::InvalidData,
            fmt::format("{}: this machine cannot read the encoding \"{}\"", PathToUtf8(path), from));
    }
    decoder_ = std::make_unique<Decoder>(file_, conversion);
    decoded_ = std::make_unique<std::istream>(decoder_.get());
    stream_ = decoded_.get();
}

} // namespace qel::engine
