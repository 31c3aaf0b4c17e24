#include "KeyboardLayout.h"

#include <QCoreApplication>

#include <initializer_list>

namespace virlo
{

namespace
{

using Action = KeyboardLayout::Action;
using Key = KeyboardLayout::Key;
using Row = KeyboardLayout::Row;

QString translated(const char* text)
{
    return QCoreApplication::translate("Keyboard", text);
}

QString nameOf(QChar character)
{
    switch (character.unicode()) {
    case u'.':
        return translated("Dot");
    case u'-':
        return translated("Hyphen");
    case u'_':
        return translated("Underscore");
    case u'+':
        return translated("Plus");
    case u'%':
        return translated("Percent");
    case u'@':
        return translated("At sign");
    default:
        return character;
    }
}

/// One key a character.
Row keys(const char* characters, int columns = 1)
{
    Row row;
    for (const QChar character : QString::fromLatin1(characters))
        row.push_back({Action::Insert, character, nameOf(character), columns});
    return row;
}

Row domains(std::initializer_list<const char*> names)
{
    Row row;
    for (const char* const name : names)
        row.push_back({Action::Domain, QString::fromLatin1(name), {}, 2});
    return row;
}

Row endings(std::initializer_list<const char*> names)
{
    Row row;
    for (const char* const name : names)
        row.push_back({Action::Insert, QString::fromLatin1(name), {}, 1});
    return row;
}

Row deletes()
{
    return {{Action::Delete, translated("Delete"), {}, 2}};
}

Row clears()
{
    return {{Action::Clear, translated("Clear"), {}, 2}};
}

Row arrows()
{
    return {{Action::Left, QStringLiteral("←"), translated("Cursor left"), 1},
            {Action::Right, QStringLiteral("→"), translated("Cursor right"), 1}};
}

Row done()
{
    return {{Action::Done, translated("Done"), {}, 2}};
}

Row joined(std::initializer_list<Row> parts)
{
    Row row;
    for (const Row& part : parts)
        row.insert(row.end(), part.begin(), part.end());
    return row;
}

} // namespace

KeyboardLayout KeyboardLayout::email()
{
    return {{joined({keys("1234567890"), deletes()}), joined({keys("qwertyuiop"), clears()}),
             joined({keys("asdfghjkl@"), arrows()}), joined({keys("zxcvbnm.-_"), done()}),
             joined({domains({"@gmail.com", "@outlook.com", "@yahoo.com", "@icloud.com"}),
                     endings({".com", ".net"}), keys("+%")})},
            12,
            QStringLiteral("g")};
}

KeyboardLayout KeyboardLayout::phone()
{
    return {{joined({keys("123", 2), deletes()}), joined({keys("456", 2), clears()}),
             joined({keys("789", 2), arrows()}), joined({keys("+0-", 2), done()})},
            8,
            QStringLiteral("5")};
}

} // namespace virlo
