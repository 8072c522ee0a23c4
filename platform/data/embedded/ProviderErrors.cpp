#include "platform/data/embedded/ProviderErrors.h"

#include <stdexcept>
#include <utility>

namespace qel {

namespace {

/// The numbers are HRESULTs of the facility that COM leaves to interfaces, so clients see negative integers.
constexpr std::int32_t InterfaceError(std::uint32_t code) {
    return static_cast<std::int32_t>(0x80040000U + code);
}

} // namespace

std::int32_t ErrorNumberOf(engine::ErrorKind kind) {
    switch (kind) {
    case engine::ErrorKind::FileNotFound:
        return InterfaceError(0xE60);
    case engine::ErrorKind::NotACubeFile:
        return InterfaceError(0xE61);
    case engine::ErrorKind::UnsupportedVersion:
        return InterfaceError(0xE62);
    case engine::ErrorKind::DamagedFile:
        return InterfaceError(0xE63);
    case engine::ErrorKind::UnknownCube:
        return InterfaceError(0xE64);
    case engine::ErrorKind::UnknownName:
        return InterfaceError(0xE65);
    case engine::ErrorKind::UnknownMember:
        return InterfaceError(0xE66);
    case engine::ErrorKind::SyntaxError:
        return InterfaceError(0xE67);
    case engine::ErrorKind::InvalidExpression:
        return InterfaceError(0xE68);
    case engine::ErrorKind::TooLarge:
        return InterfaceError(0xE69);
    case engine::ErrorKind::InvalidDefinition:
        return InterfaceError(0xE6A);
    case engine::ErrorKind::InvalidData:
        return InterfaceError(0xE6B);
    case engine::ErrorKind::CannotWrite:
        return InterfaceError(0xE6C);
    }
    throw std::invalid_argument("An engine error of no known kind has no number.");
}

AutomationError ProviderError(std::int32_t number, std::string description) {
    return {number, std::move(description), embeddedProvider};
}

AutomationError ProviderError(engine::ErrorKind kind, std::string description) {
    return ProviderError(ErrorNumberOf(kind), std::move(description));
}

AutomationError ToAutomationError(const engine::EngineError& error) {
    return ProviderError(error.Kind(), error.what());
}

} // namespace qel
