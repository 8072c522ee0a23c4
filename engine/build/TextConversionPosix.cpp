#include "engine/build/TextConversion.h"

#include <cerrno>
#include <cstddef>
#include <iconv.h>

namespace qel::engine {

namespace {

class IconvConversion : public TextConversion {
public:
    explicit IconvConversion(iconv_t conversion) : conversion_(conversion) {}
    ~IconvConversion() override { ::iconv_close(conversion_); }
    IconvConversion(const IconvConversion&) = delete;
    IconvConversion& operator=(const IconvConversion&) = delete;

    std::string Take(std::vector<char>& bytes, bool isAtEnd) override {
        std::string text(bytes.size() * 4 + 4, '\0'); // the most that UTF-8 needs
        char* in = bytes.data();
        std::size_t inLeft = bytes.size();
        char* out = text.data();
        std::size_t outLeft = text.size();
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
        text.resize(text.size() - outLeft);
        bytes.erase(bytes.begin(), bytes.end() - static_cast<std::ptrdiff_t>(inLeft));
        return text;
    }

private:
    iconv_t conversion_;
};

} // namespace

std::unique_ptr<TextConversion> ConversionFrom(const std::string& encoding) {
    const iconv_t conversion = ::iconv_open("UTF-8", encoding.c_str());
    if (conversion ==
        reinterpret_cast<iconv_t>(-1)) { // NOLINT(performance-no-int-to-ptr): iconv's own failure
        return nullptr;
    }
    return std::make_unique<IconvConversion>(conversion);
}

} // namespace qel::engine
