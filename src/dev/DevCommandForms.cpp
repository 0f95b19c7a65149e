#include "dev/DevCommandForms.h"

#include "dev/DevCommandOptions.h"
#include "dev/DevPathForms.h"
#include "dev/DevShellText.h"
#include "dev/DevShellVariables.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace lmp {

namespace {

using Words = std::span<const std::string>;

/// No pattern reaches over it: a blank does not match the semicolon, nor a dot the line feed.
constexpr std::string_view apart = " ;\n ";

constexpr int maxDepth = 16;

/// How many words behind git's options are looked at; no pattern looks at more.
constexpr std::size_t fewWords = 8;

/// Bytes that are taken apart or put together; beyond, it is given up.
constexpr std::size_t maxWork = 2 * DevCommandForms::maxForms;

std::string_view programName(std::string_view word) {
    return word.substr(word.rfind('/') + 1);
}

/// The program that a word names, also behind `name=`, where an alias or a variable is set.
std::string_view programOf(std::string_view word) {
    return programName(word.substr(word.find('=') + 1));
}

/// A shell might find more in it than one word.
bool isText(std::string_view word) {
    return word.find_first_of(" \t\n;&|<>()$`\\'\"") != std::string_view::npos;
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

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const auto end = std::min(text.find_first_of(" \t\n"), text.size());
        if (end > 0)
            words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

class Forms {
public:
    Forms(std::string_view directory, bool elsewhere)
        : m_directory(directory)
        , m_moved(elsewhere) {}

    void addWhole(std::string_view command);
    void addLists(std::string_view loose);
    void read(std::string_view text, int depth);
    void readLines(std::string_view text, std::string_view directory, bool elsewhere);
    bool isBearable() const { return m_bearable; }
    std::string take() { return std::move(m_forms); }

private:
    void add(std::string_view form);
    bool spend(std::size_t bytes);
    void addPart(const DevShellText::Part &part, std::string_view text, int depth);
    void addFilled(const DevShellText::Part &part, int depth);
    void readWords(Words words, std::string_view text, int depth);
    void readPrograms(Words words, int depth);
    Words readGit(Words words, int depth);
    void addGit(Words words);
    void readSetting(std::string_view setting, int depth);
    void addPaths(Words words);
    void moveTo(Words words);

    std::string m_forms;
    std::string m_directory; ///< after the `cd`s so far
    bool m_moved;            ///< plain names are looked at as paths too
    DevShellVariables m_variables;
    std::size_t m_work = 0;
    bool m_bearable = true;
};

void Forms::add(std::string_view form) {
    m_bearable = m_bearable && m_forms.size() + form.size() <= DevCommandForms::maxForms;
    if (m_bearable && !form.empty())
        (m_forms += form) += apart;
}

/// @return whether there is still so much left to spend
bool Forms::spend(std::size_t bytes) {
    m_work += bytes;
    m_bearable = m_bearable && m_work <= maxWork;
    return m_bearable;
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
        loose += std::string_view("\"'\\`$(){}[]<>|&;,=").contains(c) ? ' ' : c;
    }
    add(plain);
    add(loose);
    addLists(loose);
}

/// Where the program and its arguments are items of a list, as they are in `['git', '-C', '.', 'push']`.
void Forms::addLists(std::string_view loose) {
    const auto words = split(loose);
    for (std::size_t at = 0; at < words.size() && m_bearable; ++at) {
        if (programName(words[at]) == "git")
            readGit(Words(words).subspan(at + 1), 0);
    }
}

void Forms::read(std::string_view text, int depth) {
    m_bearable = m_bearable && depth <= maxDepth;
    if (!spend(text.size()))
        return;
    const auto taken = DevShellText::read(text);
    for (auto part = taken.parts.begin(); part != taken.parts.end() && m_bearable; ++part) {
        addPart(*part, text, depth);
        addFilled(*part, depth);
    }
    for (auto nested = taken.nested.begin(); nested != taken.nested.end() && m_bearable; ++nested)
        read(*nested, depth + 1);
}

/// Each line by itself, where reading on from the one before may have taken it for something else.
void Forms::readLines(std::string_view text, std::string_view directory, bool elsewhere) {
    m_directory = directory;
    m_moved = elsewhere;
    while (!text.empty() && m_bearable) {
        const auto end = std::min(text.find('\n'), text.size());
        read(text.substr(0, end), 0);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// @param text where it stands
void Forms::addPart(const DevShellText::Part &part, std::string_view text, int depth) {
    add(joined(part.words));
    add(joined(part.targets));
    addPaths(part.words);
    addPaths(part.targets);
    readPrograms(part.words, depth);
    readWords(part.words, text, depth);
    readWords(part.targets, text, depth);
}

/// The part with its variables filled in, and with all of them left out.
void Forms::addFilled(const DevShellText::Part &part, int depth) {
    using Use = DevShellVariables::Use;
    for (const auto &word : part.words)
        m_variables.note(word);
    const auto hasVariable = [](const std::string &word) {
        return word.contains('$');
    };
    if (std::ranges::none_of(part.words, hasVariable) && std::ranges::none_of(part.targets, hasVariable))
        return;
    DevShellText::Part before;
    for (const auto use : {Use::Values, Use::Nothing}) {
        DevShellText::Part filled;
        const auto fill = [&](Words words, std::vector<std::string> &into) {
            for (const auto &word : words) {
                auto text = m_variables.fill(word, use);
                if (spend(word.size() + text.size()) && !text.empty())
                    into.push_back(std::move(text));
            }
        };
        fill(part.words, filled.words);
        fill(part.targets, filled.targets);
        if (use == Use::Nothing && filled.words == before.words && filled.targets == before.targets)
            return;
        addPart(filled, {}, depth);
        // A value falls apart into words.
        if (use == Use::Values && std::ranges::any_of(filled.words, isText))
            read(joined(filled.words), depth + 1);
        before = std::move(filled);
    }
}

/// What may be a command to whatever program it is given to. It moves nobody else.
void Forms::readWords(Words words, std::string_view text, int depth) {
    for (auto word = words.begin(); word != words.end() && m_bearable; ++word) {
        if (*word == text || !isText(*word))
            continue;
        const auto directory = m_directory;
        const bool moved = m_moved;
        read(*word, depth + 1);
        m_directory = directory;
        m_moved = moved;
    }
}

/// Looks for programs that run others. They are looked for at every place, since what stands before them (`env`, `sudo
/// -u somebody`, assignments) is without end; a word that only looks like one asks once too often.
void Forms::readPrograms(Words words, int depth) {
    for (std::size_t at = 0; at < words.size() && m_bearable; ++at) {
        const auto name = programOf(words[at]);
        const auto rest = words.subspan(at + 1);
        if (name == "git" && spend(rest.size()))
            add(DevCommandOptions::gatheredOfGit(readGit(rest, depth)));
        else if (name == "cd" || name == "pushd")
            moveTo(rest);
        else if (name == "eval" || name == "-S") // env -S
            return read(joined(rest), depth + 1);
        else if ((name == "rm" || name == "chmod" || name == "chown") && spend(rest.size()))
            add(DevCommandOptions::gathered(name, rest));
    }
}

/// What git is told to do, without the options before it. Where a substitution stood, the value of an option may be
/// missing here, and what seems to be it is another option or the command.
/// @return its command and what follows
Words Forms::readGit(Words words, int depth) {
    std::size_t at = 0;
    for (; at < words.size() && words[at].starts_with('-'); ++at) {
        if (!takesValue(words[at]) || at + 1 == words.size() || words[at + 1].starts_with('-'))
            continue;
        const auto &value = words[++at];
        readSetting(value, depth);
        if (value.find_first_of("=/.") == std::string::npos)
            addGit(words.subspan(at));
    }
    if (spend(at) && at > 0)
        addGit(words.subspan(at));
    return words.subspan(at);
}

void Forms::addGit(Words words) {
    if (!words.empty())
        add("git " + joined(words.first(std::min(fewWords, words.size()))));
}

/// An alias may stand for any command.
void Forms::readSetting(std::string_view setting, int depth) {
    const auto equals = setting.find('=');
    if (!setting.starts_with("alias.") || equals == std::string_view::npos)
        return;
    const auto alias = setting.substr(equals + 1);
    if (alias.starts_with('!'))
        read(alias.substr(1), depth + 1);
    else
        add("git " + std::string(alias));
}

/// Where the words lead that are paths, or might be after a `cd`; also those given as an option's value.
void Forms::addPaths(Words words) {
    std::string paths;
    for (std::string_view word : words) {
        word = word.substr(word.find('=') + 1);
        if (!hasDots(word) && (!m_moved || word.starts_with('-') || word.empty()))
            continue;
        if (!spend(word.size() + m_directory.size()))
            return;
        (paths += DevPathForms::clean(word, m_directory)) += ' ';
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
    spend(m_directory.size());
}

} // namespace

std::optional<std::string> DevCommandForms::of(std::string_view command, std::string_view directory, bool elsewhere) {
    Forms forms(directory, elsewhere);
    forms.addWhole(command);
    forms.read(command, 0);
    if (command.contains('\n') && command.find_first_of("'\"`\\$<#") != std::string_view::npos)
        forms.readLines(command, directory, elsewhere);
    if (!forms.isBearable())
        return std::nullopt;
    return forms.take();
}

} // namespace lmp
