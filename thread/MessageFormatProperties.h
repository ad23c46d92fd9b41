#pragma once
// Custom text-format properties of the thread document. The document writes them on bubble cells and
// avatar images; the document layout and the inline image handler read them.

#include <QTextFormat>

namespace newsReader::MessageFormatProperties {

constexpr int TopLeftRadius = QTextFormat::UserProperty + 1;
constexpr int TopRightRadius = QTextFormat::UserProperty + 2;
constexpr int BottomRightRadius = QTextFormat::UserProperty + 3;
constexpr int BottomLeftRadius = QTextFormat::UserProperty + 4;
constexpr int Shadow = QTextFormat::UserProperty + 5;
constexpr int TintColor = QTextFormat::UserProperty + 6;
constexpr int Tint = QTextFormat::UserProperty + 7;

} // namespace newsReader::MessageFormatProperties
