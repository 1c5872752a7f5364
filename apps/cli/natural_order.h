// Names in the order that people expect: s1, s2, s10.
#pragma once

#include <QString>
#include <QStringList>

#include <string>

namespace lumetra {

/// Below 0 if `a` comes before `b`, 0 if they are the same text, above 0 otherwise. Numbers within
/// texts are compared by their values, and where these are equal by their letters.
int compareNaturally(const QString& a, const QString& b);

/// Appends bytes to a key whose order, byte by byte, is this one; keys of several texts are in the
/// order of their first texts, then of their second, and so on.
/// @param text  Without NUL.
void appendNaturalKey(std::string& key, const QString& text);

/// The text that was appended at `at`, which moves behind it.
QString textOfNaturalKey(const char*& at);

/// Orders texts, and lists of them from the first to the last.
struct NaturalOrder {
    bool operator()(const QString& a, const QString& b) const { return compareNaturally(a, b) < 0; }
    bool operator()(const QStringList& a, const QStringList& b) const;
};

} // namespace lumetra
