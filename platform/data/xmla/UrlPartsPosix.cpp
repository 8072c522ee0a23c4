#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"
#include "platform/data/xmla/UrlParts.h"

#include <curl/curl.h>
#include <memory>

namespace qel {

namespace {

struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct FreeText {
    void operator()(char* text) const { curl_free(text); }
};

/// One part of an address; empty when it is missing.
std::string Part(CURLU* url, CURLUPart part, unsigned int flags = 0) {
    char* text = nullptr;
    if (curl_url_get(url, part, &text, flags) != CURLUE_OK) {
        return {};
    }
    const std::unique_ptr<char, FreeText> owner(text);
    return text;
}

} // namespace

UrlParts ReadUrl(const std::string& address) {
    const std::unique_ptr<CURLU, FreeUrl> url(curl_url());
    const CURLUcode failed = curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0);
    if (failed != CURLUE_OK) {
        throw ServerError(errorBadConnectionText, std::string("The server's address cannot be read: ") +
                                                      curl_url_strerror(failed) + ".");
    }
    UrlParts parts;
    parts.scheme = Part(url.get(), CURLUPART_SCHEME);
    parts.host = Part(url.get(), CURLUPART_HOST);
    parts.port = Part(url.get(), CURLUPART_PORT, CURLU_NO_DEFAULT_PORT);
    parts.user = Part(url.get(), CURLUPART_USER, CURLU_URLDECODE);
    parts.password = Part(url.get(), CURLUPART_PASSWORD, CURLU_URLDECODE);
    curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
    curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
    parts.url = Part(url.get(), CURLUPART_URL);
    return parts;
}

} // namespace qel
