#include "calc/CallingDocument.h"

#include "platform/office/OfficeText.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <com/sun/star/frame/XModel.hpp>
#include <osl/file.hxx>
#include <system_error>

namespace qel::calc {

using office::FromOffice;

namespace {

/// Empty for a document that was never saved, or not to a file.
std::filesystem::path FolderOf(const DocumentReference& document) {
    using namespace com::sun::star;
    const uno::Reference<frame::XModel> model(document, uno::UNO_QUERY);
    rtl::OUString path;
    if (!model.is() ||
        osl::FileBase::getSystemPathFromFileURL(model->getURL(), path) != osl::FileBase::E_None) {
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
