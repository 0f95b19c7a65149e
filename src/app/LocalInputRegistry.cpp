#include "app/LocalInputRegistry.h"

#include "platform/Log.h"

#include <exception>

namespace lmp {

namespace {

QCoro::Task<bool> saveOne(std::shared_ptr<LocalInputRegistry::Save> save) {
    try {
        co_return co_await (*save)();
    } catch (const std::exception &error) {
        qCCritical(logTermination) << "saving local input ended with an exception:" << error.what();
    }
    co_return false;
}

QCoro::Task<bool> saveEach(std::vector<std::shared_ptr<LocalInputRegistry::Save>> saves) {
    // A task runs as soon as it is made, so all of them are under way before the first is waited for.
    std::vector<QCoro::Task<bool>> running;
    running.reserve(saves.size());
    for (auto &save : saves)
        running.push_back(saveOne(save));
    bool all = true;
    for (auto &one : running)
        all = co_await one && all;
    co_return all;
}

} // namespace

LocalInputRegistry::Registration LocalInputRegistry::add(Save save) {
    std::erase_if(m_saves, [](const auto &known) { return known.expired(); });
    auto kept = std::make_shared<Save>(std::move(save));
    m_saves.push_back(kept);
    return Registration(std::move(kept));
}

QCoro::Task<bool> LocalInputRegistry::saveAll() const {
    std::vector<std::shared_ptr<Save>> saves;
    for (const auto &known : m_saves) {
        if (auto save = known.lock())
            saves.push_back(std::move(save));
    }
    return saveEach(std::move(saves));
}

} // namespace lmp
