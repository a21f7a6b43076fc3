#pragma once
#include <QString>
#include <array>

namespace core {

struct AttributeRow {
  quint32 bit;
  char letter;
  const char* meaning;
};

// The fixed table; its order is the order of the letters in every attribute string.
inline constexpr std::array<AttributeRow, 8> kAttributeTable = {{
    {1, 'R', "read-only"},
    {2, 'H', "hidden"},
    {4, 'S', "system"},
    {16, 'D', "directory"},
    {32, 'A', "archive"},
    {128, 'N', "normal"},
    {256, 'T', "temporary"},
    {2048, 'C', "compressed"},
}};

// Eight characters: the row's letter where its bit is set, "-" elsewhere.
QString AttributeString(quint32 attributes);
void AppendAttributeString(QString* out, quint32 attributes);
// The inverse for the letters given on a command line ("RH", "d"); false on an unknown letter.
bool AttributeBitsFromLetters(const QString& letters, quint32* bits);

}  // namespace core
