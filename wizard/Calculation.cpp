#include "wizard/Calculation.h"

#include "cube/CubeConnection.h"
#include "cube/CubeValue.h"
#include "platform/value/Conversion.h"

namespace qel {

namespace {

using namespace ModSetCube;

Variant FirstOf(const Variant& list) {
    return list.As<std::shared_ptr<const VariantArray>>()->elements.front();
}

} // namespace

Calculation Calculate(const WizardContext& context, OpenedCube& opened, const Selection& selection) {
    const ValueCall call = CallOf(selection);
    const OpenedCube cube{call.cubeFile, call.CubeName};
    try {
        if (!EnsureCurrentCubeOpen(context.thread, context.providers, opened, cube)) {
            return {Null{}, "Outdated Cube Version"};
        }
        opened = cube;
        const ValueKeys keys{FirstOf(call.ObsName), FirstOf(call.ObsNum), FirstOf(call.ObsLevel),
                             FirstOf(call.ObsMember), FirstOf(call.ActivityList)};
        const auto [value, failure] =
            GetCubeValue(context.thread, context.providers, context.locale, call, keys,
                         DaysOf(call.From_Date, call.To_Date, context.locale));
        const std::string text = ToText(value, context.locale);
        if (IsNumeric(value, context.locale)) {
            return {value, text};
        }
        return {Null{}, text + " " + (failure ? failure->Description() : "")};
    } catch (const AutomationError& error) {
        DropConnection(context.thread);
        return {Null{}, "#err " + std::to_string(error.Number()) + " " + error.Description()};
    }
}

} // namespace qel
