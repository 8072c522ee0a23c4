#include "platform/dialog/calc/OfficeMessages.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/dialog/calc/RightToLeftBox.h"
#include "platform/office/OfficeText.h"
#include "text/Text.h"

#include <com/sun/star/awt/MessageBoxButtons.hpp>
#include <com/sun/star/awt/MessageBoxResults.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XMessageBoxFactory.hpp>

namespace qel::office {

namespace awt = com::sun::star::awt;
namespace uno = com::sun::star::uno;

namespace {

constexpr std::int32_t yesNo = 4;

MessageBoxAnswer AnswerOf(sal_Int16 result) {
    switch (result) {
    case awt::MessageBoxResults::YES:
        return MessageBoxAnswer::Yes;
    case awt::MessageBoxResults::NO:
        return MessageBoxAnswer::No;
    case awt::MessageBoxResults::CANCEL: // the close box
        return MessageBoxAnswer::Cancel;
    default:
        return MessageBoxAnswer::Ok;
    }
}

} // namespace

MessageBoxAnswer OfficeMessages::Show(std::int32_t style, const std::string& title, const std::string& text) {
    try {
        const bool isQuestion = (style & yesNo) != 0;
        const std::string lines = ReplaceAll(text, "\r\n", "\n");
        if (BeginsRightToLeft(lines)) {
            const auto agreed = isQuestion ? MessageBoxAnswer::Yes : MessageBoxAnswer::Ok;
            const auto refused = isQuestion ? MessageBoxAnswer::No : MessageBoxAnswer::Ok;
            return ShowRightToLeft(windows_, isQuestion, title, lines) ? agreed : refused;
        }
        const uno::Reference<awt::XMessageBoxFactory> factory(awt::Toolkit::create(windows_.Office()),
                                                              uno::UNO_QUERY_THROW);
        // The stop icon is that of errors.
        const auto box = factory->createMessageBox(
            windows_.Active(), isQuestion ? awt::MessageBoxType_ERRORBOX : awt::MessageBoxType_WARNINGBOX,
            isQuestion ? awt::MessageBoxButtons::BUTTONS_YES_NO | awt::MessageBoxButtons::DEFAULT_BUTTON_YES
                       : awt::MessageBoxButtons::BUTTONS_OK,
            ToOffice(title), ToOffice(lines));
        return AnswerOf(box->execute());
    } catch (const uno::Exception&) {
        return MessageBoxAnswer::Ok;
    }
}

} // namespace qel::office
