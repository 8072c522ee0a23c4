#include "calc/OrmQelFunctionAddIn.h"
#include "calc/WizardsService.h"

#include <rtl/ref.hxx>

// The functions by which the office makes the objects, as OrmFuncQel4.components names them. Each returns a
// reference that the office owns.

namespace {

using com::sun::star::uno::XComponentContext;
using Arguments = com::sun::star::uno::Sequence<com::sun::star::uno::Any>;

template <class Object>
com::sun::star::uno::XInterface* Make(XComponentContext* context) {
    const rtl::Reference<Object> object(new Object(context));
    return cppu::acquire(object.get());
}

} // namespace

extern "C" SAL_DLLPUBLIC_EXPORT com::sun::star::uno::XInterface*
MakeOrmQelFunctionAddIn(XComponentContext* context, const Arguments& /*arguments*/) {
    return Make<qel::calc::OrmQelFunctionAddIn>(context);
}

extern "C" SAL_DLLPUBLIC_EXPORT com::sun::star::uno::XInterface*
MakeOrmWizardsService(XComponentContext* context, const Arguments& /*arguments*/) {
    return Make<qel::calc::WizardsService>(context);
}
