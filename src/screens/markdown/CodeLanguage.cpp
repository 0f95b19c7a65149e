#include "CodeLanguage.h"

#include <QString>

#include <algorithm>
#include <array>

namespace lmp {

namespace {

using Form = CodeLanguage::Form;

constexpr auto languages = std::to_array<CodeLanguage>({
    {.names = u"c h cpp c++ cc cxx hpp objc objective-c arduino cuda glsl",
     .keywords = u"alignas alignof asm auto bool break case catch char class co_await co_return co_yield concept const "
                 u"consteval constexpr constinit continue decltype default delete do double else enum explicit export "
                 u"extern false final float for friend goto if inline int long mutable namespace new noexcept nullptr "
                 u"operator override private protected public register requires return short signed sizeof static "
                 u"static_assert static_cast struct switch template this thread_local throw true try typedef typeid "
                 u"typename union unsigned using virtual void volatile while NULL",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .quotes = u"\"",
     .characters = true,
     .directives = true},
    {.names = u"java kotlin kt kts scala groovy gradle dart c# cs csharp",
     .keywords = u"abstract as async await base bool boolean break by byte case catch char class companion const "
                 u"continue data decimal def default delegate do double dynamic else enum event extends extension "
                 u"external false final finally fixed float for foreach fun get if implements import in init inner int "
                 u"interface internal is it late lateinit lazy let lock long mixin namespace native new null object of "
                 u"open operator out override package params private protected public readonly record ref required "
                 u"return sealed set short static string struct super suspend switch synchronized this throw throws "
                 u"trait transient true try typealias typedef using val var virtual void volatile when where while "
                 u"with yield",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .longQuotes = u"\"",
     .triple = true},
    {.names = u"js javascript jsx mjs cjs ts typescript tsx qml vue svelte",
     .keywords = u"abstract any as async await boolean break case catch class const constructor continue debugger "
                 u"declare default delete do else enum export extends false finally for from function get if "
                 u"implements import in infer instanceof interface is keyof let module namespace never new null number "
                 u"of private property protected public readonly required return satisfies set signal static string "
                 u"super switch symbol this throw true try type typeof undefined unknown var void while with yield",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .longQuotes = u"`"},
    {.names = u"python py python3 ipython pyi starlark",
     .keywords = u"False None True and as assert async await break case class continue def del elif else except "
                 u"finally for from global if import in is lambda match nonlocal not or pass raise return self try "
                 u"while with yield",
     .lineComments = u"#",
     .longQuotes = u"\"'",
     .triple = true},
    {.names = u"rust rs",
     .keywords =
         u"Err None Ok Self Some as async await bool box break char const continue crate dyn else enum extern "
         u"f32 f64 false fn for i128 i16 i32 i64 i8 if impl in isize let loop match mod move mut pub ref return "
         u"self static str struct super trait true type u128 u16 u32 u64 u8 union unsafe use usize where while",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .quotes = u"",
     .longQuotes = u"\"",
     .characters = true},
    {.names = u"go golang",
     .keywords = u"any bool break byte case chan const continue default defer else error fallthrough false float32 "
                 u"float64 for func go goto if import int int32 int64 interface iota len make map nil package range "
                 u"return rune select string struct switch true type uint uint32 uint64 var",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .quotes = u"\"",
     .longQuotes = u"`",
     .characters = true},
    {.names = u"swift",
     .keywords =
         u"Any Self actor as associatedtype async await break case catch class continue default defer deinit do "
         u"else enum extension fallthrough false fileprivate final for func guard if import in indirect init "
         u"inout internal is lazy let mutating nil nonisolated open operator override private protocol public "
         u"repeat required rethrows return self some static struct subscript super switch throw throws true "
         u"try typealias var weak where while",
     .lineComments = u"//",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .quotes = u"\"",
     .longQuotes = u"\"",
     .triple = true},
    {.names = u"json jsonc json5 jsonl ndjson",
     .form = Form::Data,
     .keywords = u"false null true",
     .lineComments = u"//"},
    {.names = u"yaml yml toml ini cfg conf properties env dotenv desktop",
     .form = Form::Data,
     .keywords = u"false no null off on true yes",
     .lineComments = u"#",
     .longQuotes = u"\"",
     .triple = true},
    {.names = u"sh bash zsh shell console shellsession fish dockerfile docker makefile make powershell ps1 bat",
     .keywords = u"alias break case continue do done echo elif else esac eval exec exit export fi for function if in "
                 u"local read readonly return set shift source test then trap unset until while FROM RUN CMD COPY ADD "
                 u"ENV ARG WORKDIR ENTRYPOINT EXPOSE",
     .lineComments = u"#",
     .quotes = u"",
     .longQuotes = u"\"'",
     .variables = true},
    {.names = u"sql mysql postgres postgresql sqlite plsql",
     .keywords = u"add all alter and as asc begin between by case check column commit constraint create cross default "
                 u"delete desc distinct drop else end exists explain foreign from full group having if in index inner "
                 u"insert into is join key left like limit not null offset on or order outer primary references "
                 u"replace returning right rollback select set table then transaction union unique update using values "
                 u"view when where with",
     .lineComments = u"--",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .caseless = true},
    {.names = u"ruby rb perl pl php r elixir ex",
     .keywords = u"and array as begin break case class def defined do echo else elseif elsif end ensure extends false "
                 u"fn for foreach function global if implements in include local loop module my namespace new next nil "
                 u"not null or our private public redo repeat require rescue return self static sub super then this "
                 u"throw true try unless until use var when while yield",
     .lineComments = u"#",
     .commentBegin = u"/*",
     .commentEnd = u"*/",
     .variables = true},
    {.names = u"lua haskell hs",
     .keywords =
         u"and break case class data do else elseif end false for function goto if import in instance let local "
         u"module nil not of or repeat return then true type until where while",
     .lineComments = u"--"},
    {.names = u"css scss less sass",
     .form = Form::Data,
     .keywords = u"auto block flex grid important inherit initial none",
     .commentBegin = u"/*",
     .commentEnd = u"*/"},
    {.names = u"html xml svg xhtml htm qrc plist xaml", .form = Form::Markup},
    {.names = u"diff patch udiff", .form = Form::Changes},
});

bool holds(QStringView words, QStringView word) {
    return std::ranges::any_of(words.split(u' '), [=](QStringView one) { return one == word; });
}

} // namespace

const CodeLanguage *CodeLanguage::called(QStringView name) {
    const QString lower = name.toString().toLower();
    const auto found =
        std::ranges::find_if(languages, [&](const CodeLanguage &one) { return holds(one.names, lower); });
    return found == languages.end() ? nullptr : &*found;
}

} // namespace lmp
