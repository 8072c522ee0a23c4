#include "calc/OrmQelFunctionAddIn.h"

#include "calc/CellArguments.h"
#include "calc/ServerResultsOfOffice.h"
#include "calc/ThreadFunction.h"
#include "function/FunctionTexts.h"
#include "platform/data/ConnectionText.h"
#include "platform/office/OfficeText.h"

#include <com/sun/star/uno/RuntimeException.hpp>
#include <cppuhelper/supportsservice.hxx>
#include <exception>

namespace qel::calc {

using office::FromOffice;
using office::ToOffice;

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;

namespace {

constexpr const char* serviceName = "OrmFunctionQel4.OrmQelFunction";
constexpr const char* addInService = "com.sun.star.sheet.AddIn";
constexpr const char* implementationName = "OrmFunctionQel4.OrmQelFunctionAddIn";

using Any = uno::Any;

/// One call of a cell: its arguments as the class takes them.
class CellCall {
public:
    CellCall(const DocumentReference& document, const Locale& locale, CubePaths& paths)
        : document_(document), locale_(locale), paths_(paths) {}

    std::string CubeFile(const Any& argument) const { return paths_.Of(document_, Text(argument)); }
    std::string Text(const Any& argument) const { return TextFromCell(argument, locale_); }
    AutomationDate Date(const Any& argument) const { return DateFromCell(argument, locale_); }

private:
    const DocumentReference& document_;
    const Locale& locale_;
    CubePaths& paths_;
};

const ArgumentTexts* FindArgument(const rtl::OUString& method, sal_Int32 argument) {
    const FunctionTexts* const texts = FindByMethod(FromOffice(method));
    const auto index = static_cast<std::size_t>(argument) - 1; // the first one is the document
    return texts != nullptr && argument > 0 && index < texts->arguments.size() ? &texts->arguments[index]
                                                                               : nullptr;
}

Variant Evaluate(OrmQelFunction& function, const ValueCall& call) { return function.QeLF1(call).value; }
Variant Evaluate(OrmQelFunction& function, const NameCall& call) { return function.QelName(call).value; }

} // namespace

AsyncResults& OrmQelFunctionAddIn::ServerResults() {
    const std::scoped_lock lock(mutex_);
    if (!serverResults_) {
        serverResults_ = MakeServerResults(context_, isHebrew_);
    }
    return *serverResults_;
}

template <class Read>
Any OrmQelFunctionAddIn::Answer(const DocumentReference& document, const Read& read) {
    try {
        ThreadFunction& thread = FunctionOfThread();
        thread.locale = locales_.Of(document);
        const auto call = read(CellCall(document, thread.locale, thread.paths));
        if (IsServerAddress(call.cubeFile)) {
            return ServerResults().Ask(ServerCallOf(call, thread.locale));
        }
        return ToCell(Evaluate(thread.function, call));
    } catch (const uno::Exception&) {
        throw;
    } catch (const std::exception& error) { // becomes the office's own exception
        throw uno::RuntimeException(ToOffice(error.what()));
    } catch (...) {
        throw uno::RuntimeException();
    }
}

Any OrmQelFunctionAddIn::QelF1(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                               const Any& ObsName, const Any& ObsNum, const Any& ObsLevel,
                               const Any& ObsMember, const Any& ActivityList, const Any& SummaryGroup,
                               const Any& SeifLevel, const Any& Accounts, const Any& Measure,
                               const Any& MoneySet, const Any& Plbs, const Any& RH, const Any& Firma,
                               const Any& OpeningBalance, const Any& FromDate, const Any& ToDate) {
    return Answer(document, [&](const CellCall& call) -> ValueCall {
        return {call.CubeFile(cubeFile),
                call.Text(CubeName),
                KeysFromCell(ObsName),
                KeysFromCell(ObsNum),
                KeysFromCell(ObsLevel),
                KeysFromCell(ObsMember),
                KeysFromCell(ActivityList),
                call.Text(SummaryGroup),
                call.Text(SeifLevel),
                call.Text(Accounts),
                call.Text(Measure),
                call.Text(MoneySet),
                call.Text(Plbs),
                call.Text(RH),
                call.Text(Firma),
                call.Text(OpeningBalance),
                call.Date(FromDate),
                call.Date(ToDate)};
    });
}

Any OrmQelFunctionAddIn::QeL1(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                              const Any& ObsName, const Any& ObsNum, const Any& ObsLevel,
                              const Any& ObsMember, const Any& ActivityList, const Any& SummaryGroup,
                              const Any& SeifLevel, const Any& Accounts, const Any& Measure,
                              const Any& MoneySet, const Any& Plbs, const Any& RH, const Any& Firma,
                              const Any& OpeningBalance, const Any& FromDate, const Any& ToDate) {
    return QelF1(document, cubeFile, CubeName, ObsName, ObsNum, ObsLevel, ObsMember, ActivityList,
                 SummaryGroup, SeifLevel, Accounts, Measure, MoneySet, Plbs, RH, Firma, OpeningBalance,
                 FromDate, ToDate);
}

Any OrmQelFunctionAddIn::QelName(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                                 const Any& DimType, const Any& DimMember) {
    return Answer(document, [&](const CellCall& call) -> NameCall {
        return {call.CubeFile(cubeFile), call.Text(CubeName), call.Text(DimType), call.Text(DimMember)};
    });
}

Any OrmQelFunctionAddIn::RetQelName(const DocumentReference& document, const Any& cubeFile,
                                    const Any& CubeName, const Any& DimType, const Any& DimMember) {
    return QelName(document, cubeFile, CubeName, DimType, DimMember);
}

rtl::OUString OrmQelFunctionAddIn::getProgrammaticFuntionName(const Text& displayName) {
    const FunctionTexts* const texts = FindByFullName(FromOffice(displayName));
    return texts != nullptr ? ToOffice(texts->method) : Text();
}

rtl::OUString OrmQelFunctionAddIn::getDisplayFunctionName(const Text& method) {
    const FunctionTexts* const texts = FindByMethod(FromOffice(method));
    return texts != nullptr ? ToOffice(texts->fullName) : Text();
}

rtl::OUString OrmQelFunctionAddIn::getFunctionDescription(const Text& method) {
    const FunctionTexts* const texts = FindByMethod(FromOffice(method));
    return texts != nullptr ? ToOffice(texts->help.In(IsHebrew())) : Text();
}

rtl::OUString OrmQelFunctionAddIn::getDisplayArgumentName(const Text& method, sal_Int32 argument) {
    const ArgumentTexts* const texts = FindArgument(method, argument);
    return texts != nullptr ? ToOffice(texts->name.In(IsHebrew())) : Text();
}

rtl::OUString OrmQelFunctionAddIn::getArgumentDescription(const Text& method, sal_Int32 argument) {
    const ArgumentTexts* const texts = FindArgument(method, argument);
    return texts != nullptr ? ToOffice(texts->help.In(IsHebrew())) : Text();
}

rtl::OUString OrmQelFunctionAddIn::getProgrammaticCategoryName(const Text& /*method*/) {
    return ToOffice(categoryName.english);
}

rtl::OUString OrmQelFunctionAddIn::getDisplayCategoryName(const Text& /*method*/) {
    return ToOffice(categoryName.In(IsHebrew()));
}

void OrmQelFunctionAddIn::setLocale(const Language& language) {
    language_ = language;
    *isHebrew_ = language.Language == "he" || language.Language == "iw";
}

OrmQelFunctionAddIn::Language OrmQelFunctionAddIn::getLocale() { return language_; }

uno::Sequence<sheet::LocalizedName> OrmQelFunctionAddIn::getCompatibilityNames(const Text& method) {
    const FunctionTexts* const texts = FindByMethod(FromOffice(method));
    if (texts == nullptr) {
        return {};
    }
    const sheet::LocalizedName everywhere(Language("en", "US", ""), ToOffice(texts->fullName));
    return {&everywhere, 1};
}

rtl::OUString OrmQelFunctionAddIn::getServiceName() { return ToOffice(serviceName); }

rtl::OUString OrmQelFunctionAddIn::getImplementationName() { return ToOffice(implementationName); }

sal_Bool OrmQelFunctionAddIn::supportsService(const Text& service) {
    return cppu::supportsService(this, service);
}

uno::Sequence<rtl::OUString> OrmQelFunctionAddIn::getSupportedServiceNames() {
    const rtl::OUString names[] = {ToOffice(serviceName), ToOffice(addInService)};
    return {names, 2};
}

bool OrmQelFunctionAddIn::IsHebrew() const { return *isHebrew_; }

} // namespace qel::calc
