#pragma once

#include <QString>

#include <vector>

namespace virlo
{

/// The keys of an on-screen keyboard, row by row. Values.
struct KeyboardLayout {
    enum class Action {
        Insert, ///< the key's text, at the cursor
        Domain, ///< the key's text, which begins with "@", in place of everything from the first "@" on
        Delete,
        Clear,
        Left,
        Right,
        Done
    };

    struct Key {
        Action action = Action::Insert;
        QString text; ///< as shown
        QString name; ///< for a screen reader, where the text says nothing
        int columns = 1;
    };

    using Row = std::vector<Key>;

    std::vector<Row> rows; ///< each of `columns` in all
    int columns = 0;
    QString first; ///< text of the key that has the focus first

    /// Digits, lower-case letters, the signs and some common ends of an address.
    [[nodiscard]] static KeyboardLayout email();
    /// The pad of a telephone.
    [[nodiscard]] static KeyboardLayout phone();
};

} // namespace virlo
