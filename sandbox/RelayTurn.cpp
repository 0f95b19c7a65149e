#include "RelayTurn.h"

#include "CrisisDetector.h"
#include "CrisisDirectory.h"
#include "MemoryExtractor.h"
#include "SandboxCrypto.h"
#include "SandboxServices.h"

#include <cstdio>

namespace lmp::sandbox {

RelayTurn::RelayTurn(SandboxServices &services, std::string userId, TurnRequest request)
    : m_services(services)
    , m_userId(std::move(userId))
    , m_request(std::move(request))
    , m_requestId("req_" + randomHex(10)) {
    services.ledger.requireFunds(m_userId, m_request.cost());
    m_context.messages = m_request.messages;
    m_context.memories = services.memories.of(m_userId);
    m_context.fresh = MemoryExtractor::fromText(m_request.userText());
    m_context.crisisLayer = CrisisDetector::layerOf(m_request.userText());
    m_context.companion = m_request.companion;
    m_context.mode = m_request.mode;
    m_context.incognito = m_request.incognito;
    m_context.brief = m_request.maxTokens <= 300;
    if (m_context.crisisLayer) {
        const auto account = services.accounts.byId(m_userId);
        m_safety = CrisisDirectory::safetyBlock(*m_context.crisisLayer, account ? account->dialCode : "");
    }
}

std::unique_ptr<ReplySource> RelayTurn::start(bool paced) {
    auto speech = m_services.voice.speak(m_context, m_request.maxTokens, paced);
    for (const auto &memory : speech.used)
        m_used.push_back({{"content", memory.content}, {"truth", memory.truth}});
    return std::move(speech.source);
}

const boost::json::object &RelayTurn::complete() {
    if (!m_receipt) {
        const auto receipt = m_services.ledger.charge(m_userId, m_requestId, m_request.cost());
        m_receipt = boost::json::object{
            {"pipCharged", receipt.charged}, {"balance", receipt.balance}, {"requestId", m_requestId}};
        keepTrimmings();
    }
    return *m_receipt;
}

void RelayTurn::keepTrimmings() {
    // The charge stands, so its closing frame has to go out whatever becomes of these.
    try {
        // Words said in despair are not for keeping.
        if (!m_request.incognito && !m_context.crisisLayer)
            m_services.memories.remember(m_userId, m_context.fresh);
        if (auto notice = m_services.usage.noteTurn(m_userId))
            (*m_receipt)["continuousUse"] = std::move(*notice);
    } catch (const SQLite::Exception &error) {
        std::fprintf(stderr, "lumenpair-sandbox: after a charge: %s\n", error.what());
    }
}

boost::json::object RelayTurn::uncharged() {
    return {{"pipCharged", 0}, {"balance", m_services.ledger.balanceOf(m_userId)}, {"requestId", m_requestId}};
}

} // namespace lmp::sandbox
