#include "terminal/CommandLine.h"

#include "platform/ApplicationSupport.h"
#include "terminal/DevCommandLine.h"

#include <CLI/CLI.hpp>

#include <QRegularExpression>

#include <array>
#include <sstream>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The parser's strings beside the options they become.
struct Words {
    std::string site, profile, conversation, email, phone, dialCode = "+86", region, shownId, draftId, memoryId,
                                                           memoryFile;
    std::vector<std::string> text, memoryWords;
};

class ChineseFormatter : public CLI::Formatter {
public:
    ChineseFormatter() {
        label("OPTIONS", "选项");
        label("SUBCOMMANDS", "命令");
        label("SUBCOMMAND", "命令");
        label("Usage", "用法");
        label("REQUIRED", "（必填）");
        label("Positionals", "参数");
        label("Excludes", "不能同时用");
        label("Needs", "要先有");
        column_width(34);
    }
};

void addChat(CLI::App &app, CommandLine &line, Words &words) {
    auto *chat = app.add_subcommand("chat", "和分身说话（默认命令）")->group("命令");
    auto *last = chat->add_flag("-c,--continue", line.continueLast, "接着最近的一段对话");
    auto *one = chat->add_option("--conversation", words.conversation, "接着这个编号的对话")->type_name("ID");
    auto *incognito = chat->add_flag("--incognito", line.incognito, "无痕对话：不写历史、不记记忆");
    chat->add_flag("--cheaper", line.cheaper, "省着说：回答短一些，花得少一些");
    chat->add_flag("--jsonl", line.jsonl, "标准输出一行一个 JSON 事件");
    chat->add_option("TEXT", words.text, "要说的话；不给就读标准输入，都没有就开始对话")->type_name("");
    last->excludes(one);
    incognito->excludes(last)->excludes(one);
    chat->callback([&line] { line.command = CommandLine::Command::Chat; });
}

void addSession(CLI::App &app, CommandLine &line, Words &words) {
    auto *in = app.add_subcommand("sign-in", "登录；密码和验证码在提示后输入，或从标准输入逐行读取")->group("命令");
    auto *email = in->add_option("--email", words.email, "用邮箱登录")->type_name("ADDRESS");
    auto *phone = in->add_option("--phone", words.phone, "用手机号登录")->type_name("NUMBER");
    auto *guest = in->add_flag("--guest", line.guest, "不登录，先试聊几轮");
    auto *google = in->add_flag("--google", line.google, "在浏览器里用 Google 登录");
    phone->excludes(email);
    guest->excludes(email)->excludes(phone);
    google->excludes(email)->excludes(phone)->excludes(guest);
    in->add_flag("--register", line.registerEmail, "邮箱还没有账号：先收验证码，再设密码")->needs(email);
    in->add_option("--dial-code", words.dialCode, "国家或地区区号，默认 +86")->type_name("CODE")->needs(phone);
    in->add_flag("--password", line.password, "手机号用密码而不是验证码登录")->needs(phone);
    in->callback([&line, email, phone, guest, google] {
        line.command = CommandLine::Command::SignIn;
        if (email->empty() && phone->empty() && guest->empty() && google->empty())
            throw CLI::RequiredError("--email / --phone / --google / --guest");
    });
    app.add_subcommand("sign-out", "退出登录")->group("命令")->callback([&line] {
        line.command = CommandLine::Command::SignOut;
    });
    app.add_subcommand("whoami", "看看现在是谁")->group("命令")->callback([&line] {
        line.command = CommandLine::Command::WhoAmI;
    });
}

void addConversations(CLI::App &app, CommandLine &line, Words &words) {
    auto *all = app.add_subcommand("conversations", "看对话")->group("命令");
    all->require_subcommand(1);
    all->add_subcommand("list", "列出对话")->group("命令")->callback([&line] {
        line.command = CommandLine::Command::ConversationList;
    });
    auto *show = all->add_subcommand("show", "显示一段对话")->group("命令");
    show->add_option("ID", words.shownId, "对话编号")->type_name("")->required();
    show->callback([&line] { line.command = CommandLine::Command::ConversationShow; });
}

void addSearch(CLI::App &app, CommandLine &line, Words &words) {
    auto *search = app.add_subcommand("search", "在所有对话的消息里查找，一个字也行")->group("命令");
    search->add_flag("--jsonl", line.jsonl, "标准输出一行一个 JSON 结果");
    search->add_option("--most", line.most, "最多列出几条，默认 50")->type_name("N")->check(CLI::Range(1, 10'000));
    search->add_option("TEXT", words.text, "要找的字词；几个词要都出现")->type_name("")->required();
    search->callback([&line] { line.command = CommandLine::Command::Search; });
}

void addDrafts(CLI::App &app, CommandLine &line, Words &words) {
    auto *all = app.add_subcommand("drafts", "看本机的草稿：未同步的对话和未发送的输入")->group("命令");
    all->require_subcommand(1);
    auto *list = all->add_subcommand("list", "列出草稿")->group("命令");
    auto *show = all->add_subcommand("show", "显示一份草稿")->group("命令");
    auto *discard = all->add_subcommand("discard", "丢弃一份草稿，先问过再丢")->group("命令");
    show->add_option("ID", words.draftId, "对话编号")->type_name("")->required();
    auto *discarded = discard->add_option("ID", words.draftId, "对话编号")->type_name("");
    discard->add_flag("--unreadable", line.discardUnreadable, "丢弃读不出来的草稿文件")->excludes(discarded);
    discard->require_option(1, 2);
    for (auto *one : {list, show})
        one->add_flag("--jsonl,--json", line.draftJson, "标准输出一行一个 JSON 记录");
    discard->add_flag("--yes", line.discardSurely, "不再问");
    list->callback([&line] { line.command = CommandLine::Command::DraftList; });
    show->callback([&line] { line.command = CommandLine::Command::DraftShow; });
    discard->callback([&line] { line.command = CommandLine::Command::DraftDiscard; });
}

void addMemory(CLI::App &app, CommandLine &line, Words &words) {
    using What = CommandLine::Memory::What;
    auto *all = app.add_subcommand("memory", "看分身记住了什么：确认、纠正、忘记")->group("命令");
    all->require_subcommand(1);
    const auto add = [&](const char *name, const char *text, What what) {
        auto *one = all->add_subcommand(name, text)->group("命令");
        one->callback([&line, what] {
            line.command = CommandLine::Command::Memory;
            line.memory.what = what;
        });
        return one;
    };
    const auto addById = [&](const char *name, const char *text, What what) {
        auto *one = add(name, text, what);
        one->add_option("ID", words.memoryId, "编号")->type_name("")->required();
        return one;
    };
    const auto withJson = [&](CLI::App *one) {
        one->add_flag("--jsonl", line.memory.jsonl, "标准输出一行一个 JSON 记录");
        return one;
    };
    withJson(add("list", "列出记住的", What::List));
    withJson(add("search", "查找记忆，一个字也可以", What::List))
        ->add_option("TEXT", words.memoryWords, "每个词都要出现")
        ->type_name("")
        ->required();
    withJson(add("candidates", "列出等你确认的", What::Candidates));
    withJson(add("chapters", "列出章节", What::Chapters));
    withJson(addById("confirm", "收下一条候选", What::Confirm));
    addById("dismiss", "丢掉一条候选", What::Dismiss);
    addById("correct", "换一种说法", What::Correct)
        ->add_option("TEXT", words.memoryWords, "新的说法")
        ->type_name("")
        ->required();
    addById("revert", "改回上一版", What::Revert);
    addById("freeze", "冻结：留着，但不再用", What::Freeze);
    addById("unfreeze", "解冻", What::Unfreeze);
    addById("forget", "忘记；标准输出给出撤销要用的一行", What::Forget);
    add("restore", "撤销忘记", What::Restore)
        ->add_option("FILE", words.memoryFile, "放着那一行的文件；不给就读标准输入")
        ->type_name("");
    withJson(addById("history", "看一条记忆改过什么", What::History));
    withJson(add("import", "从文本里找出可以记住的", What::Import))
        ->add_option("FILE", words.memoryFile, "文本文件，一行算一段；- 是标准输入")
        ->type_name("")
        ->required();
    addById("accept", "收下一章", What::Accept);
    addById("reject", "不要一章", What::Reject);
}

void addCrisis(CLI::App &app, CommandLine &line, Words &words) {
    auto *crisis = app.add_subcommand("crisis", "现在很难受？先看这个（不用登录，不记录你来过）")->group("命令");
    crisis->add_option("REGION", words.region, "地区代码，例如 CN、HK、US")->type_name("");
    crisis->callback([&line] { line.command = CommandLine::Command::Crisis; });
}

QString fromUtf8(const std::string &text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

/// What is wrong with the line, in the person's language. The parser's own words are English: of them only the options
/// and arguments that they name are kept.
QString complaint(const CLI::ParseError &error) {
    using CLI::ExitCodes;
    struct Meaning {
        ExitCodes code;
        QString text;
        QRegularExpression named; ///< its captures are what is named
    };
    static const auto pattern = [](const QString &text) {
        return QRegularExpression(text, QRegularExpression::DotMatchesEverythingOption);
    };
    static const std::array meanings{
        Meaning{ExitCodes::ExtrasError, u"不认识这些参数"_s, pattern(u"not expected: (.+)$"_s)},
        Meaning{ExitCodes::ExcludesError, u"这些选项不能同时用"_s, pattern(u"^(.+) excludes (.+)$"_s)},
        Meaning{ExitCodes::RequiresError, u"这些选项要一起用"_s, pattern(u"^(.+) requires (.+)$"_s)},
        Meaning{ExitCodes::RequiredError, u"还缺少必填的内容"_s, pattern(u"^(?!A subcommand)(.+) is required$"_s)},
        Meaning{ExitCodes::ValidationError, u"这个值不能用"_s, pattern(u"^([^:]+):"_s)},
        Meaning{ExitCodes::ArgumentMismatch, u"参数的个数不对"_s, pattern(u"^([^:]+):"_s)},
    };
    QString text = u"命令写得不对"_s;
    for (const Meaning &meaning : meanings) {
        if (error.get_exit_code() != int(meaning.code))
            continue;
        const auto named = meaning.named.match(fromUtf8(error.what())).capturedTexts().mid(1);
        text = meaning.text + (named.isEmpty() ? QString() : u"："_s + named.join(u"、"_s));
    }
    return text + u"\n用 --help 看用法。\n"_s;
}

void takeOver(CommandLine &line, const Words &words) {
    line.site = fromUtf8(words.site);
    line.profile = fromUtf8(words.profile);
    line.conversationId =
        fromUtf8(line.command == CommandLine::Command::ConversationShow ? words.shownId : words.conversation);
    line.draftId = fromUtf8(words.draftId);
    line.email = fromUtf8(words.email);
    line.phone = fromUtf8(words.phone);
    line.dialCode = fromUtf8(words.dialCode);
    line.region = fromUtf8(words.region);
    line.memory.id = fromUtf8(words.memoryId);
    line.memory.file = fromUtf8(words.memoryFile);
    QStringList memoryWords;
    for (const std::string &piece : words.memoryWords)
        memoryWords << fromUtf8(piece);
    line.memory.text = memoryWords.join(u' ');
    for (const std::string &piece : words.text)
        line.text << fromUtf8(piece);
}

/// What was given and holds nothing: an empty word is none, and would find everything or leave nothing of a memory.
/// @param hasMemoryText whether the command about memories takes a text
QString missing(const CommandLine &line, bool hasMemoryText) {
    using Command = CommandLine::Command;
    if (line.command == Command::DraftDiscard && line.draftId.isEmpty() && !line.discardUnreadable)
        return u"ID"_s;
    const bool searches = line.command == Command::Search && line.text.join(QString()).trimmed().isEmpty();
    const bool says = hasMemoryText && line.memory.text.trimmed().isEmpty();
    return searches || says ? u"TEXT"_s : QString();
}

} // namespace

std::expected<CommandLine, CommandLine::Leave> CommandLine::parse(int argc, const char *const *argv) {
    CommandLine line;
    Words words;
    CLI::App app("Lumenpair：和你的分身说话。", "lumenpair");
    app.formatter(std::make_shared<ChineseFormatter>());
    app.footer("有图形显示时，不带命令就打开窗口；--gallery DIR 把每个画面存成图片，不用显示。");
    app.option_defaults()->group("选项");
    app.set_help_flag("-h,--help", "显示帮助");
    app.set_version_flag("--version", version().toStdString(), "显示版本");
    app.require_subcommand(0, 1);
    app.fallthrough();
    auto *site =
        app.add_option("--site", words.site, "服务地址；不给就看 LMP_SITE，再没有就用本机沙盒")->type_name("URL");
    app.add_flag("--sandbox", line.sandbox, "用本机沙盒，不看 LMP_SITE")->excludes(site);
    app.add_option("--profile", words.profile, "用另一套设置和本机文件")->type_name("NAME");
    addChat(app, line, words);
    addSession(app, line, words);
    addConversations(app, line, words);
    addSearch(app, line, words);
    addDrafts(app, line, words);
    addMemory(app, line, words);
    addCrisis(app, line, words);
    DevCommandLine dev(app, line, argc, argv);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        std::ostringstream out, ignored;
        const bool usage = app.exit(error, out, ignored) != 0;
        return std::unexpected(Leave{usage ? complaint(error) : fromUtf8(out.str()), usage});
    }
    takeOver(line, words);
    if (const auto wrong = dev.takeOver(line))
        return std::unexpected(Leave{*wrong + u'\n', true});
    if (const QString what = missing(line, !words.memoryWords.empty()); !what.isEmpty())
        return std::unexpected(Leave{u"还缺少必填的内容："_s + what + u"\n用 --help 看用法。\n"_s, true});
    if (!line.profile.isEmpty() && !ApplicationSupport::isProfileName(line.profile))
        return std::unexpected(Leave{u"--profile 只能用字母、数字、- 和 _。\n"_s, true});
    return line;
}

QString CommandLine::version() {
    return u"lumenpair " LMP_VERSION u" (" LMP_BUILD u")"_s;
}

} // namespace lmp
