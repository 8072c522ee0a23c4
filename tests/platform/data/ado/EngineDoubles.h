#pragma once

#include "platform/data/DataAccess.h"
#include "tests/helpers/automation/DispatchDouble.h"
#include "tests/helpers/automation/NamedClass.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the provider's doubles are made of: objects whose members ask the embedded engine.

namespace qel::test {

using Inputs = std::vector<const VARIANT*>;

/// The engine behind all doubles.
DataAccess& Engine();
/// The connection text with "double:ledger" replaced by the example's cube.
std::string EngineText(std::string text);

std::string TextAt(const Inputs& inputs, std::size_t index);
std::int32_t NumberAt(const Inputs& inputs, std::size_t index);

/// Runs the engine; its errors leave as the double's own, numbered as the machine's objects number them.
OwnedVariant Scripted(const std::function<OwnedVariant()>& work);

void DefineValue(DispatchDouble& object, const std::wstring& name, const Variant& value);
void DefineObject(DispatchDouble& object, const std::wstring& name, NamedClass::Factory make);
/// A property that is asked of the engine every time.
void DefineProperty(DispatchDouble& object, const std::wstring& name, std::function<Variant()> value);
/// A method without a result.
void DefineMethod(DispatchDouble& object, const std::wstring& name,
                  std::function<void(const Inputs& inputs)> work);

ComPointer<IDispatch> Finished(const ComPointer<DispatchDouble>& object);
/// A collection with Count and Item, the item by number or by name.
ComPointer<IDispatch> Collection(std::int32_t count,
                                 std::function<ComPointer<IDispatch>(const Variant& key)> item);

/// ADOMD.Cube and everything below it.
ComPointer<IDispatch> MakeCubeDef(const std::shared_ptr<CubeDef>& cube);

} // namespace qel::test
