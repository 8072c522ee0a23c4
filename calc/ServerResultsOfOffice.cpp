#include "calc/ServerResultsOfOffice.h"

#include "calc/ServerQuestion.h"
#include "calc/ServersOfUser.h"

#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <cppuhelper/implbase1.hxx>

namespace qel::calc {

namespace uno = com::sun::star::uno;
namespace awt = com::sun::star::awt;
namespace frame = com::sun::star::frame;

namespace {

using WeakResults = std::weak_ptr<AsyncResults>;

/// Called by the office on its main thread, between what the person does.
class Delivery : public cppu::WeakImplHelper1<awt::XCallback> {
public:
    explicit Delivery(WeakResults results) : results_(std::move(results)) {}

    void SAL_CALL notify(const uno::Any& /*data*/) override {
        if (const auto results = results_.lock()) {
            results->Deliver();
        }
    }

private:
    WeakResults results_;
};

/// Ends the requests before the office ends.
class EndOfOffice : public cppu::WeakImplHelper1<frame::XTerminateListener> {
public:
    explicit EndOfOffice(WeakResults results) : results_(std::move(results)) {}

    void SAL_CALL queryTermination(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL notifyTermination(const com::sun::star::lang::EventObject& /*event*/) override {
        if (const auto results = results_.lock()) {
            results->Stop();
        }
    }
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& /*event*/) override {}

private:
    WeakResults results_;
};

} // namespace

std::shared_ptr<AsyncResults> MakeServerResults(const uno::Reference<uno::XComponentContext>& context,
                                                const std::shared_ptr<const std::atomic<bool>>& isHebrew) {
    const auto mainThread = awt::AsyncCallback::create(context);
    // Filled below: the callback needs the results, which need to wake it.
    const auto delivery = std::make_shared<uno::Reference<awt::XCallback>>();
    auto results = std::make_shared<AsyncResults>(
        &ServersOfUser, AskingThePerson(context, KnownServersOfUser(), isHebrew), [mainThread, delivery] {
            try {
                mainThread->addCallback(*delivery, {});
            } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the office has ended
            }
        });
    *delivery = uno::Reference<awt::XCallback>(new Delivery(results));
    frame::Desktop::create(context)->addTerminateListener(new EndOfOffice(results));
    return results;
}

} // namespace qel::calc
