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

/// Empty for a document that was never saved, or not to a file.
std::filesystem::path FolderOf(const DocumentReference& document) {
    rtl::OUString path;
    if (osl::FileBase::getSystemPathFromFileURL(AddressOf(document), path) != osl::FileBase::E_None) {
        return {};
    }
    return PathFromSetting(FromOffice(path)).parent_path();
}

} // namespace

std::string CubePathFrom(const DocumentReference& document, const std::string& cubeFile) {
    std::string text(Trimmed(cubeFile));
    const std::filesystem::path path = PathFromSetting(text);
    if (path.empty() || path.is_absolute()) {
        return text;
    }
    const std::filesystem::path folder = FolderOf(document);
    std::error_code failed;
    if (folder.empty() || !std::filesystem::is_regular_file(folder / path, failed)) {
        return text;
    }
    return PathToUtf8(folder / path);
}

} // namespace qel::calc
