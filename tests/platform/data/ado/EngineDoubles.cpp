#include "tests/platform/data/ado/EngineDoubles.h"

#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/VariantConversion.h"

namespace qel::test {

DataAccess& Engine() {
    static EmbeddedDataAccess engine;
    return engine;
}

std::string EngineText(std::string text) {
    const std::string alias = "double:ledger";
    if (const auto at = text.find(alias); at != std::string::npos) {
        text.replace(at, alias.size(), QEL_TEST_CUBE);
    }
    return text;
}

std::string TextAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::string>();
}

std::int32_t NumberAt(const Inputs& inputs, std::size_t index) {
    return windows::FromAutomation(*inputs.at(index)).As<std::int32_t>();
}

OwnedVariant Scripted(const std::function<OwnedVariant()>& work) {
    try {
        return work();
    } catch (const AutomationError& error) {
        const std::int32_t number = error.Number();
        const HRESULT code = number > 0 ? MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number) : number;
        throw ScriptedFailure{code, error.Description(), error.Source()};
    }
}

void DefineValue(DispatchDouble& object, const std::wstring& name, const Variant& value) {
    object.Define(name, [value](const Inputs&) { return windows::ToAutomation(value); });
}

void DefineObject(DispatchDouble& object, const std::wstring& name, NamedClass::Factory make) {
    object.Define(name, [make](const Inputs&) { return Scripted([&] { return ObjectValue(make()); }); });
}

void DefineProperty(DispatchDouble& object, const std::wstring& name, std::function<Variant()> value) {
    object.Define(
        name, [value](const Inputs&) { return Scripted([&] { return windows::ToAutomation(value()); }); });
}

void DefineMethod(DispatchDouble& object, const std::wstring& name,
                  std::function<void(const Inputs& inputs)> work) {
    object.Define(name, [work](const Inputs& inputs) {
        return Scripted([&] {
            work(inputs);
            return OwnedVariant();
        });
    });
}

ComPointer<IDispatch> Finished(const ComPointer<DispatchDouble>& object) {
    return ComPointer<IDispatch>(object.Get());
}

ComPointer<IDispatch> Collection(std::int32_t count,
                                 std::function<ComPointer<IDispatch>(const Variant& key)> item) {
    auto collection = MakeDouble();
    DefineValue(*collection.Get(), L"Count", count);
    collection->Define(L"Item", [item](const Inputs& inputs) {
        return Scripted([&] { return ObjectValue(item(windows::FromAutomation(*inputs.at(0)))); });
    });
    return Finished(collection);
}

} // namespace qel::test
