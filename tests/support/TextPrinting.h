#pragma once

#include <QString>
#include <ostream>

QT_BEGIN_NAMESPACE

/// So that a failed expectation shows the text.
inline void PrintTo(const QString& text, std::ostream* stream) { *stream << '"' << text.toStdString() << '"'; }

QT_END_NAMESPACE
