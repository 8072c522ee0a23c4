#include "calc/CallingDocument.h"

#include "platform/office/OfficeText.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <osl/file.hxx>
#include <system_error>

namespace qel::calc {

using office::FromOffice;

namespace {

/// A document has a location while it is being loaded, when its formulas are calculated first; its address
/// comes later.
rtl::OUString AddressOf(const DocumentReference& document) {
    using namespace com::sun::star;
    const uno::Reference<frame::XModel> model(document, uno::UNO_QUERY);
    if (model.is() && !model->getURL().isEmpty()) {
        return model->getURL();
    }
    const uno::Reference<frame::XStorable> stored(document, uno::UNO_QUERY);
    return stored.is() ? stored->getLocation() : rtl::OUString();
}

/// The folder of a document at that address; empty for one that was never saved, or not to a file.
std::filesystem::path FolderOf(const rtl::OUString& address) {
    rtl::OUString path;
    if (osl::FileBase::getSystemPathFromFileURL(address, path) != osl::FileBase::E_None) {
        return {};
    }
    return PathFromSetting(FromOffice(path)).parent_path();
}

} // namespace

std::string CubePaths::Of(const DocumentReference& document, const std::string& cubeFile) {
    const rtl::OUString address = AddressOf(document);
    if (cubeFile != cubeFile_ || address != address_) {
        text_ = Trimmed(cubeFile);
        const std::filesystem::path path = PathFromSetting(text_);
        const std::filesystem::path folder =
            path.empty() || path.is_absolute() ? std::filesystem::path() : FolderOf(address);
        inFolder_ = folder.empty() ? std::filesystem::path() : folder / path;
        textInFolder_ = PathToUtf8(inFolder_);
        cubeFile_ = cubeFile;
        address_ = address;
    }
    std::error_code failed;
    return !inFolder_.empty() && std::filesystem::is_regular_file(inFolder_, failed) ? textInFolder_ : text_;
}

std::string CubePathFrom(const DocumentReference& document, const std::string& cubeFile) {
    return CubePaths().Of(document, cubeFile);
}

} // namespace qel::calc
