#include "core/logtext.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>

#include "core/Utils.h"

namespace Lattice {

namespace {

enum class Length { None, Char, Short, Long, LongLong, Size, Max, Difference };

struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1;  // none given
    Length length = Length::None;
    char type = '\0';
    const char* end = nullptr;  // behind the conversion

    bool left() const { return flags.find('-') != std::string::npos; }
};

/// The arguments by reference: a `va_list` itself can't be handed on and come back moved.
struct Arguments {
    va_list list;
};

int ReadNumber(const char*& at) {
    int number = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        if (number < 100000000) {
            number = number * 10 + (*at - '0');
        }
    }
    return number;
}

Length ReadLength(const char*& at) {
    switch (*at) {
        case 'h':
            return *++at == 'h' ? (++at, Length::Char) : Length::Short;
        case 'l':
            return *++at == 'l' ? (++at, Length::LongLong) : Length::Long;
        case 'z':
            return ++at, Length::Size;
        case 'j':
            return ++at, Length::Max;
        case 't':
            return ++at, Length::Difference;
        default:
            return Length::None;
    }
}

/// `at` stands behind the "%". Takes a "*" from the arguments.
Conversion ReadConversion(const char* at, Arguments& arguments) {
    Conversion conversion;
    for (; *at && std::strchr("-+ #0", *at); ++at) {
        conversion.flags += *at;
    }
    if (*at == '*') {
        ++at;
        conversion.width = va_arg(arguments.list, int);
        if (conversion.width < 0) {
            conversion.flags += '-';
            conversion.width = conversion.width > -100000000 ? -conversion.width : 100000000;
        }
    } else {
        conversion.width = ReadNumber(at);
    }
    if (*at == '.') {
        ++at;
        if (*at == '*') {
            ++at;
            conversion.precision = va_arg(arguments.list, int);  // below 0 means none
        } else {
            conversion.precision = ReadNumber(at);
        }
    }
    conversion.length = ReadLength(at);
    conversion.type = *at;
    conversion.end = *at ? at + 1 : at;
    return conversion;
}

long long SignedArgument(Length length, Arguments& arguments) {
    switch (length) {
        case Length::Char:
            return static_cast<signed char>(va_arg(arguments.list, int));
        case Length::Short:
            return static_cast<short>(va_arg(arguments.list, int));
        case Length::Long:
            return va_arg(arguments.list, long);
        case Length::LongLong:
            return va_arg(arguments.list, long long);
        case Length::Size:
        case Length::Difference:
            return va_arg(arguments.list, std::ptrdiff_t);
        case Length::Max:
            return va_arg(arguments.list, std::intmax_t);
        case Length::None:
            break;
    }
    return va_arg(arguments.list, int);
}

unsigned long long UnsignedArgument(Length length, Arguments& arguments) {
    switch (length) {
        case Length::Char:
            return static_cast<unsigned char>(va_arg(arguments.list, unsigned));
        case Length::Short:
            return static_cast<unsigned short>(va_arg(arguments.list, unsigned));
        case Length::Long:
            return va_arg(arguments.list, unsigned long);
        case Length::LongLong:
            return va_arg(arguments.list, unsigned long long);
        case Length::Size:
        case Length::Difference:
            return va_arg(arguments.list, std::size_t);
        case Length::Max:
            return va_arg(arguments.list, std::uintmax_t);
        case Length::None:
            break;
    }
    return va_arg(arguments.list, unsigned);
}

/// Numbers have nothing of a locale in them, so the C library prints them.
template <class Number>
QString Printed(const Conversion& conversion, const char* length, Number number) {
    const std::string format =
        '%' + conversion.flags + (conversion.precision < 0 ? "*" : "*.*") + length + conversion.type;
    const auto print = [&](char* out, size_t room) {
        return conversion.precision < 0
                   ? std::snprintf(out, room, format.c_str(), conversion.width, number)
                   : std::snprintf(out, room, format.c_str(), conversion.width, conversion.precision, number);
    };
    char few[64];
    const int needed = print(few, sizeof few);
    if (needed < 0) {
        return {};
    }
    if (static_cast<size_t>(needed) < sizeof few) {
        return QString::fromLatin1(few, needed);
    }
    std::string many(static_cast<size_t>(needed) + 1, '\0');
    print(many.data(), many.size());
    return QString::fromLatin1(many.data(), needed);
}

/// Width counts characters, not the two units that one beyond the BMP takes.
QString Padded(QString text, const Conversion& conversion) {
    int characters = 0;
    for (const QChar unit : text) {
        characters += unit.isLowSurrogate() ? 0 : 1;
    }
    const int missing = conversion.width - characters;
    if (missing > 0) {
        text.insert(conversion.left() ? text.size() : 0, QString(missing, QLatin1Char(' ')));
    }
    return text;
}

QString TextArgument(const Conversion& conversion, Arguments& arguments) {
    const bool cut = conversion.precision >= 0;
    const auto most = static_cast<size_t>(conversion.precision);
    // A text that is cut needs no terminator: nothing behind the cut is read.
    if (conversion.length == Length::Long) {
        const auto text = va_arg(arguments.list, const wchar_t*);
        return !text ? QString() : cut ? ToQString(text, wcsnlen(text, most)) : ToQString(text);
    }
    const auto text = va_arg(arguments.list, const char*);
    return !text ? QString()
                 : QString::fromUtf8(text, static_cast<int>(cut ? strnlen(text, most) : std::strlen(text)));
}

QString CharacterArgument(const Conversion& conversion, Arguments& arguments) {
    if (conversion.length == Length::Long) {
        const auto character = static_cast<wchar_t>(va_arg(arguments.list, std::wint_t));
        return ToQString(&character, 1);
    }
    const auto byte = static_cast<char>(va_arg(arguments.list, int));
    return QString::fromUtf8(&byte, 1);
}

/// False for a conversion that isn't known; its argument, if there is one, stays.
bool Append(QString& text, const Conversion& conversion, Arguments& arguments) {
    switch (conversion.type) {
        case 'd':
        case 'i':
            text += Printed(conversion, "ll", SignedArgument(conversion.length, arguments));
            return true;
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            text += Printed(conversion, "ll", UnsignedArgument(conversion.length, arguments));
            return true;
        case 'p':
            text += Printed(conversion, "", va_arg(arguments.list, void*));
            return true;
        case 's':
            text += Padded(TextArgument(conversion, arguments), conversion);
            return true;
        case 'c':
            text += Padded(CharacterArgument(conversion, arguments), conversion);
            return true;
        case '%':
            text += QLatin1Char('%');
            return true;
        default:
            return false;
    }
}

}  // namespace

QString LogText(const char* format, va_list list) {
    QString text;
    if (!format) {
        return text;
    }
    Arguments arguments;
    va_copy(arguments.list, list);
    for (const char* at = format; *at;) {
        const char* percent = std::strchr(at, '%');
        if (!percent) {
            text += QString::fromUtf8(at);
            break;
        }
        text += QString::fromUtf8(at, static_cast<int>(percent - at));
        const Conversion conversion = ReadConversion(percent + 1, arguments);
        if (!Append(text, conversion, arguments)) {
            text += QString::fromUtf8(percent, static_cast<int>(conversion.end - percent));
        }
        at = conversion.end;
    }
    va_end(arguments.list);
    return text;
}

}  // namespace Lattice
