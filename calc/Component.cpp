#include "calc/OrmQelFunctionAddIn.h"

#include <rtl/ref.hxx>

// The function by which the office makes the component, as OrmFuncQel4.components names it.
extern "C" SAL_DLLPUBLIC_EXPORT com::sun::star::uno::XInterface*
MakeOrmQelFunctionAddIn(com::sun::star::uno::XComponentContext* context,
                        const com::sun::star::uno::Sequence<com::sun::star::uno::Any>& /*arguments*/) {
    const rtl::Reference<qel::calc::OrmQelFunctionAddIn> addIn(new qel::calc::OrmQelFunctionAddIn(context));
    return cppu::acquire(addIn.get()); // the office's own reference
}
