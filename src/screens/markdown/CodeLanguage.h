#pragma once

#include <QStringView>

namespace lmp {

/// What CodeHighlighter knows of one family of languages.
///
/// Constant data, any thread. Lists are words with a blank between them.
struct CodeLanguage {
    enum class Form {
        Program, ///< words, strings, comments, numbers
        Data,    ///< the same, and a word before a colon or an equals sign at the beginning of a line is a key
        Markup,  ///< tags
        Changes, ///< a line's first character tells
    };

    QStringView names = {}; ///< as they stand after a fence, in lower case
    Form form = Form::Program;
    QStringView keywords = {};
    QStringView lineComments = {};
    QStringView commentBegin = {};
    QStringView commentEnd = {};
    QStringView quotes = u"\"'"; ///< strings that end with their line
    QStringView longQuotes = {}; ///< strings that may be longer: each character, tripled when `triple`
    bool triple = false;
    bool caseless = false;   ///< keywords in any case
    bool characters = false; ///< ' holds one character, if anything
    bool directives = false; ///< # at the beginning of a line
    bool variables = false;  ///< $name

    /// The language that is called `name`; null when none is known.
    static const CodeLanguage *called(QStringView name);
};

} // namespace lmp
