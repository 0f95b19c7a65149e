#pragma once

#include <QCoroTask>

#include <functional>
#include <memory>
#include <vector>

namespace lmp {

/// Knows everything of a person's that is on this machine alone and not yet on its disk, and has it all saved before
/// the program ends.
///
/// Owned by the application, UI thread. Stores and windows add their save operation for as long as they live. A save
/// answers false when something typed would be lost; one that throws counts as that.
class LocalInputRegistry {
public:
    /// Saves what its owner holds. An ordinary function that returns a task: a lambda that is a coroutine itself would
    /// lose its captures.
    using Save = std::function<QCoro::Task<bool>()>;

    /// Holds a save operation in the registry; it leaves with this. May outlive the registry.
    class Registration {
    public:
        Registration() = default;

    private:
        friend class LocalInputRegistry;
        explicit Registration(std::shared_ptr<Save> save)
            : m_save(std::move(save)) {}
        std::shared_ptr<Save> m_save;
    };

    [[nodiscard]] Registration add(Save save);

    /// Runs every save there is now, all at once.
    /// @return whether every one of them succeeded; true when there is none
    QCoro::Task<bool> saveAll() const;

private:
    std::vector<std::weak_ptr<Save>> m_saves;
};

} // namespace lmp
