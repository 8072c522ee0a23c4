#include "platform/dialog/calc/RightToLeftBox.h"

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/ReadingOrder.h"
#include "platform/office/OfficeText.h"
#include "text/Text.h"

#include <algorithm>
#include <com/sun/star/awt/PushButtonType.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/awt/XDialog.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/text/WritingMode2.hpp>
#include <utility>
#include <vector>

namespace qel::office {

namespace awt = com::sun::star::awt;
namespace uno = com::sun::star::uno;

namespace {

// In dialog units.
constexpr int edge = 8, iconSize = 20, lineHeight = 10, buttonWidth = 50, buttonHeight = 14;
constexpr int narrowestText = 100, widestText = 270;

using PropertySet = uno::Reference<com::sun::star::beans::XPropertySet>;
using Properties = std::vector<std::pair<const char*, uno::Any>>;

struct TextSize {
    int width, height;
};

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    return lines;
}

/// Words are broken at the widest text.
TextSize SizeOf(const std::vector<std::string>& lines) {
    const auto widthOf = [](const std::string& line) {
        return static_cast<int>(LengthInUtf16(line)) * 7 / 2;
    };
    TextSize size{narrowestText, 0};
    for (const std::string& line : lines) {
        size.width = std::clamp(widthOf(line), size.width, widestText);
        size.height += lineHeight * (1 + widthOf(line) / widestText);
    }
    return size;
}

void SetAll(const PropertySet& model, const Place& place, const Properties& properties) {
    model->setPropertyValue("PositionX", uno::Any(sal_Int32{place.left}));
    model->setPropertyValue("PositionY", uno::Any(sal_Int32{place.top}));
    model->setPropertyValue("Width", uno::Any(sal_Int32{place.width}));
    model->setPropertyValue("Height", uno::Any(sal_Int32{place.height}));
    for (const auto& [name, value] : properties) {
        model->setPropertyValue(rtl::OUString::createFromAscii(name), value);
    }
}

void AddControl(const PropertySet& dialog, const char* kind, const Place& place,
                const Properties& properties) {
    const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(dialog, uno::UNO_QUERY_THROW);
    const uno::Reference<com::sun::star::container::XNameContainer> controls(dialog, uno::UNO_QUERY_THROW);
    const PropertySet model(factory->createInstance("com.sun.star.awt.UnoControl" +
                                                    rtl::OUString::createFromAscii(kind) + "Model"),
                            uno::UNO_QUERY_THROW);
    SetAll(model, place, properties);
    const auto number = static_cast<sal_Int32>(controls->getElementNames().getLength());
    controls->insertByName("Control" + rtl::OUString::number(number), uno::Any(model));
}

void AddButton(const PropertySet& dialog, const char* caption, int left, int top, awt::PushButtonType type) {
    AddControl(dialog, "Button",
               {static_cast<std::int16_t>(left), static_cast<std::int16_t>(top), buttonWidth, buttonHeight},
               {{"Label", uno::Any(ToOffice(caption))},
                {"PushButtonType", uno::Any(static_cast<sal_Int16>(type))},
                {"DefaultButton", uno::Any(type == awt::PushButtonType_OK)}});
}

/// From right to left: the icon, the text; below them the buttons.
PropertySet ModelOfBox(const OfficeWindows& windows, bool isQuestion, const std::string& title,
                       const std::string& text) {
    const std::vector<std::string> lines = LinesOf(text);
    const TextSize size = SizeOf(lines);
    std::string shown;
    for (const std::string& line : lines) {
        shown += (shown.empty() ? "" : "\n") + InOwnDirection(line); // the first one is not empty
    }
    const int width = edge + size.width + edge + iconSize + edge;
    const int buttons = edge + std::max(size.height, iconSize) + edge;
    const PropertySet dialog(windows.New("com.sun.star.awt.UnoControlDialogModel"), uno::UNO_QUERY_THROW);
    SetAll(
        dialog,
        {0, 0, static_cast<std::int16_t>(width), static_cast<std::int16_t>(buttons + buttonHeight + edge)},
        {{"Title", uno::Any(ToOffice(title))}, {"Moveable", uno::Any(true)}, {"Closeable", uno::Any(true)}});
    AddControl(
        dialog, "ImageControl",
        {static_cast<std::int16_t>(width - edge - iconSize), edge, iconSize, iconSize},
        {{"ImageURL", uno::Any(rtl::OUString::createFromAscii(isQuestion ? "private:standardimage/error"
                                                                         : "private:standardimage/warning"))},
         {"Border", uno::Any(sal_Int16{0})},
         {"ScaleImage", uno::Any(false)},
         {"Tabstop", uno::Any(false)}});
    AddControl(dialog, "FixedText",
               {edge, edge, static_cast<std::int16_t>(size.width), static_cast<std::int16_t>(size.height)},
               {{"Label", uno::Any(ToOffice(shown))},
                {"MultiLine", uno::Any(true)},
                {"WritingMode", uno::Any(com::sun::star::text::WritingMode2::RL_TB)},
                {"NoLabel", uno::Any(true)}}); // or the office would give a letter of it as the access key
    if (isQuestion) {
        AddButton(dialog, "~כן", width / 2 + edge / 4, buttons, awt::PushButtonType_OK);
        AddButton(dialog, "~לא", width / 2 - edge / 4 - buttonWidth, buttons, awt::PushButtonType_CANCEL);
    } else {
        AddButton(dialog, "אישור", (width - buttonWidth) / 2, buttons, awt::PushButtonType_OK);
    }
    return dialog;
}

/// Ends a control at the end of its scope.
class Disposed {
public:
    explicit Disposed(const uno::Reference<awt::XControl>& control) : control_(control) {}
    ~Disposed() {
        try {
            control_->dispose();
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the office took it away before
        }
    }
    Disposed(const Disposed&) = delete;
    Disposed& operator=(const Disposed&) = delete;

private:
    const uno::Reference<awt::XControl>& control_;
};

} // namespace

bool ShowRightToLeft(const OfficeWindows& windows, bool isQuestion, const std::string& title,
                     const std::string& text) {
    const uno::Reference<awt::XControl> control(windows.New("com.sun.star.awt.UnoControlDialog"),
                                                uno::UNO_QUERY_THROW);
    const Disposed disposed(control);
    control->setModel({ModelOfBox(windows, isQuestion, title, text), uno::UNO_QUERY_THROW});
    const uno::Reference<awt::XWindow> window(control, uno::UNO_QUERY_THROW);
    window->setVisible(false);
    const uno::Reference<awt::XToolkit> toolkit(awt::Toolkit::create(windows.Office()), uno::UNO_QUERY_THROW);
    control->createPeer(toolkit, windows.Active());
    windows.Centre(window);
    return uno::Reference<awt::XDialog>(control, uno::UNO_QUERY_THROW)->execute() == 1;
}

} // namespace qel::office
