#include "core/WebAuthPresenter.h"

#include "core/LoopbackReceiver.h"

namespace lmp {

using namespace Qt::StringLiterals;

WebAuthPresenter::WebAuthPresenter(ExternalOpener &opener, Clock &clock)
    : m_opener(opener)
    , m_clock(clock) {}

WebAuthPresenter::~WebAuthPresenter() {
    m_stop.request_stop();
}

QCoro::Task<WebAuthPresenter::Outcome> WebAuthPresenter::present(QString state, Address address, std::stop_token stop) {
    using Kind = WebAuthFailure::Kind;
    const QPointer self(this);
    // Left to the event loop at the end: the last page is still on its way out of one of its sockets.
    const std::unique_ptr<LoopbackReceiver, void (*)(LoopbackReceiver *)> receiver(
        new LoopbackReceiver(state), [](LoopbackReceiver *done) { done->deleteLater(); });
    if (!receiver->isListening())
        co_return std::unexpected(WebAuthFailure{Kind::NoListener, u"这台电脑上没能打开接收登录结果的端口。"_s});
    const QUrl url = address(receiver->redirectUri());
    // The sleep below is ended by the answer, by whoever asked, or by our own end.
    std::stop_source wake;
    const auto rouse = [wake]() mutable {
        wake.request_stop();
    };
    const std::stop_callback onStop(stop, rouse);
    const std::stop_callback onEnd(m_stop.get_token(), rouse);
    QObject::connect(receiver.get(), &LoopbackReceiver::arrived, receiver.get(), rouse);
    const bool opened = m_opener.open(url);
    Q_EMIT linkOffered(url, opened);
    if (!self)
        co_return std::unexpected(WebAuthFailure{Kind::Cancelled, u"登录取消了。"_s});
    const bool late = co_await m_clock.sleep(patience, wake.get_token());
    if (const auto &callback = receiver->callback()) {
        if (!callback->error.isEmpty())
            co_return std::unexpected(WebAuthFailure{
                callback->error == "access_denied"_L1 ? Kind::Cancelled : Kind::Provider, u"登录没有得到允许。"_s});
        co_return Grant{callback->code, receiver->redirectUri()};
    }
    co_return std::unexpected(late ? WebAuthFailure{Kind::TimedOut, u"等了五分钟，登录没有完成。"_s}
                                   : WebAuthFailure{Kind::Cancelled, u"登录取消了。"_s});
}

} // namespace lmp
