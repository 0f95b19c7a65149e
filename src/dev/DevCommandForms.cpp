#include "dev/DevCommandForms.h"

#include "dev/DevPathForms.h"
#include "dev/DevShellText.h"

#include <algorithm>
#include <array>
#include <span>

namespace lmp {

namespace {

using Words = std::span<const std::string>;

/// No pattern reaches over it: a blank does not match the semicolon, nor a dot the line feed.
constexpr std::string_view apart = " ;\n ";

constexpr int maxDepth = 16;

/// How many words behind a program are looked at; no pattern looks at more, and no shell needs more before its -c.
constexpr std::size_t fewWords = 8;

std::string_view programName(std::string_view word) {
    return word.substr(word.rfind('/') + 1);
}

bool isShell(std::string_view name) {
    constexpr std::array<std::string_view, 8> shells = {"sh", "bash", "zsh", "dash", "ksh", "ash", "fish", "su"};
    return std::ranges::find(shells, name) != shells.end();
}

bool takesValue(std::string_view gitOption) {
    constexpr std::array<std::string_view, 9> options = {"-C",           "-c",
                                                         "--git-dir",    "--work-tree",
                                                         "--namespace",  "--super-prefix",
                                                         "--config-env", "--attr-source",
                                                         "--list-cmds"};
    return std::ranges::find(options, gitOption) != options.end();
}

bool hasDots(std::string_view path) {
    return path.contains("//") || path.contains("./") || path.contains("/.");
}

std::string joined(Words words) {
    std::string text;
    for (const auto &word : words) {
        if (!text.empty())
            text += ' ';
        text += word;
    }
    return text;
}

class Forms {
public:
    Forms(std::string_view directory, bool elsewhere)
        : m_directory(directory)
        , m_moved(elsewhere) {}

    void addWhole(std::string_view command);
    void read(std::string_view text, int depth);
    bool isBearable() const { return m_bearable; }
    std::string take() { return std::move(m_forms); }

private:
    void add(std::string_view form);
    void readPart(const DevShellText::Part &part, int depth);
    void readPrograms(Words words, int depth);
    void readGit(Words words, int depth);
    void readShell(Words words, int depth);
    void addPaths(Words words);
    void moveTo(Words words);

    std::string m_forms;
    std::string m_directory; ///< after the `cd`s so far
    bool m_moved;            ///< plain names are looked at as paths too
    std::size_t m_read = 0;  ///< bytes that were taken apart
    bool m_bearable = true;
};

void Forms::add(std::string_view form) {
    m_bearable = m_bearable && m_forms.size() + form.size() <= DevCommandForms::maxForms;
    if (m_bearable)
        (m_forms += form) += apart;
}

/// The command as it stands, once without quotes and once with a blank for whatever may end a word.
void Forms::addWhole(std::string_view command) {
    std::string plain, loose;
    for (std::size_t at = 0; at < command.size(); ++at) {
        const auto rest = command.substr(at);
        if (rest.starts_with("\\\n") || rest.starts_with("\\\r\n")) {
            at += rest[1] == '\r' ? 2 : 1;
            continue;
        }
        const char c = command[at];
        if (!std::string_view("\"'\\").contains(c))
            plain += c;
        loose += std::string_view("\"'\\`$(){}<>|&;,=").contains(c) ? ' ' : c;
    }
    add(plain);
    add(loose);
}

void Forms::read(std::string_view text, int depth) {
    m_read += text.size();
    m_bearable = m_bearable && depth <= maxDepth && m_read <= DevCommandForms::maxForms;
    if (!m_bearable)
        return;
    const auto taken = DevShellText::read(text);
    for (auto part = taken.parts.begin(); part != taken.parts.end() && m_bearable; ++part)
        readPart(*part, depth);
    for (auto nested = taken.nested.begin(); nested != taken.nested.end() && m_bearable; ++nested)
        read(*nested, depth + 1);
}

void Forms::readPart(const DevShellText::Part &part, int depth) {
    add(joined(part.words));
    add(joined(part.targets));
    addPaths(part.words);
    addPaths(part.targets);
    readPrograms(part.words, depth);
}

/// Looks for programs that run others. They are looked for at every place, since what stands before them (`env`, `sudo
/// -u somebody`, assignments) is without end; a word that only looks like one asks once too often.
void Forms::readPrograms(Words words, int depth) {
    for (std::size_t at = 0; at < words.size() && m_bearable; ++at) {
        const auto name = programName(words[at]);
        const auto rest = words.subspan(at + 1);
        if (name == "git")
            readGit(rest, depth);
        else if (name == "cd" || name == "pushd")
            moveTo(rest);
        else if (isShell(name))
            readShell(rest, depth);
        else if (name == "eval" || name == "-S") // env -S
            return read(joined(rest), depth + 1);
    }
}

/// What git is told to do, without the options before it.
void Forms::readGit(Words words, int depth) {
    std::size_t at = 0;
    for (; at < words.size() && words[at].starts_with('-'); ++at) {
        if (!takesValue(words[at]))
            continue;
        if (++at == words.size())
            break;
        const std::string_view value = words[at];
        const auto equals = value.find('=');
        if (!value.starts_with("alias.") || equals == std::string_view::npos)
            continue;
        const auto alias = value.substr(equals + 1);
        if (alias.starts_with('!'))
            read(alias.substr(1), depth + 1);
        else
            add("git " + std::string(alias));
    }
    if (at > 0 && at < words.size())
        add("git " + joined(words.subspan(at, std::min(fewWords, words.size() - at))));
}

/// The text behind -c, which may stand together with other letters.
void Forms::readShell(Words words, int depth) {
    const auto few = words.first(std::min(fewWords, words.size()));
    for (std::size_t at = 0; at + 1 < few.size(); ++at) {
        const std::string_view word = few[at];
        if (word.starts_with('-') && !word.starts_with("--") && word.contains('c'))
            return read(few[at + 1], depth + 1);
    }
}

/// Where the words lead that are paths, or might be after a `cd`; also those given as an option's value.
void Forms::addPaths(Words words) {
    std::string paths;
    for (std::string_view word : words) {
        word = word.substr(word.find('=') + 1);
        if (!hasDots(word) && (!m_moved || word.starts_with('-') || word.empty()))
            continue;
        (paths += DevPathForms::clean(word, m_directory)) += ' ';
        if (paths.size() > DevCommandForms::maxForms)
            break;
    }
    if (!paths.empty())
        add(paths);
}

void Forms::moveTo(Words words) {
    const auto target = std::ranges::find_if(words, [](const auto &word) { return !word.starts_with('-'); });
    const auto folder = target == words.end() ? std::string("~") : *target;
    m_directory = m_directory.starts_with('~') && !folder.starts_with('/') && !folder.starts_with('~')
                      ? DevPathForms::clean(m_directory + '/' + folder, {})
                      : DevPathForms::clean(folder, m_directory);
    m_moved = true;
    m_bearable = m_bearable && m_directory.size() <= DevCommandForms::maxForms;
}

} // namespace

std::optional<std::string> DevCommandForms::of(std::string_view command, std::string_view directory, bool elsewhere) {
    Forms forms(directory, elsewhere);
    forms.addWhole(command);
    forms.read(command, 0);
    if (!forms.isBearable())
        return std::nullopt;
    return forms.take();
}

} // namespace lmp
