#include "platform/office/Clipboard.h"

#include "platform/office/OfficeText.h"

#include <com/sun/star/datatransfer/UnsupportedFlavorException.hpp>
#include <com/sun/star/datatransfer/XTransferable.hpp>
#include <com/sun/star/datatransfer/clipboard/SystemClipboard.hpp>
#include <cppuhelper/implbase1.hxx>

namespace qel::office {

namespace datatransfer = com::sun::star::datatransfer;
namespace uno = com::sun::star::uno;

namespace {

class TransferredText : public cppu::WeakImplHelper1<datatransfer::XTransferable> {
public:
    explicit TransferredText(rtl::OUString text) : text_(std::move(text)) {}

    uno::Any SAL_CALL getTransferData(const datatransfer::DataFlavor& flavor) override {
        if (!isDataFlavorSupported(flavor)) {
            throw datatransfer::UnsupportedFlavorException();
        }
        return uno::Any(text_);
    }

    uno::Sequence<datatransfer::DataFlavor> SAL_CALL getTransferDataFlavors() override {
        const datatransfer::DataFlavor text("text/plain;charset=utf-16", "Unicode",
                                            cppu::UnoType<rtl::OUString>::get());
        return {&text, 1};
    }

    sal_Bool SAL_CALL isDataFlavorSupported(const datatransfer::DataFlavor& flavor) override {
        return flavor.MimeType.startsWith("text/plain");
    }

private:
    rtl::OUString text_;
};

} // namespace

void CopyText(const uno::Reference<uno::XComponentContext>& context, const std::string& text) {
    const uno::Reference<datatransfer::XTransferable> contents(new TransferredText(ToOffice(text)));
    datatransfer::clipboard::SystemClipboard::create(context)->setContents(contents, {});
}

} // namespace qel::office
