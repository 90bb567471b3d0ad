// The named character references of HTML pages in ISO 8859-1.
#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

struct Entity {
    std::string_view name;
    unsigned char value;
};

// In ascending order of the names. A non-breaking space stands for "&", which decoding removes.
inline constexpr Entity kEntities[] = {
    {"AElig", 198},  {"Aacute", 193}, {"Acirc", 194},  {"Agrave", 192}, {"Aring", 197},
    {"Atilde", 195}, {"Auml", 196},   {"Ccedil", 199}, {"ETH", 208},    {"Eacute", 201},
    {"Ecirc", 202},  {"Egrave", 200}, {"Euml", 203},   {"Iacute", 205}, {"Icirc", 206},
    {"Igrave", 204}, {"Iuml", 207},   {"Ntilde", 209}, {"Oacute", 211}, {"Ocirc", 212},
    {"Ograve", 210}, {"Oslash", 216}, {"Otilde", 213}, {"Ouml", 214},   {"THORN", 222},
    {"Uacute", 218}, {"Ucirc", 219},  {"Ugrave", 217}, {"Uuml", 220},   {"Yacute", 221},
    {"aacute", 225}, {"acirc", 226},  {"acute", 180},  {"aelig", 230},  {"agrave", 224},
    {"amp", 38},     {"aring", 229},  {"atilde", 227}, {"auml", 228},   {"brvbar", 166},
    {"ccedil", 231}, {"cedil", 184},  {"cent", 162},   {"copy", 169},   {"curren", 164},
    {"deg", 176},    {"divide", 247}, {"eacute", 233}, {"ecirc", 234},  {"egrave", 232},
    {"eth", 240},    {"euml", 235},   {"frac12", 189}, {"frac14", 188}, {"frac34", 190},
    {"gt", 62},      {"iacute", 237}, {"icirc", 238},  {"iexcl", 161},  {"igrave", 236},
    {"iquest", 191}, {"iuml", 239},   {"laquo", 171},  {"lt", 60},      {"micro", 181},
    {"middot", 183}, {"nbsp", 38},    {"ntilde", 241}, {"oacute", 243}, {"ocirc", 244},
    {"ograve", 242}, {"oslash", 248}, {"otilde", 245}, {"ouml", 246},   {"para", 182},
    {"plusmn", 177}, {"pound", 163},  {"quot", 34},    {"raquo", 187},  {"reg", 174},
    {"sect", 167},   {"shy", 173},    {"sup2", 178},   {"sup3", 179},   {"szlig", 223},
    {"thorn", 254},  {"times", 215},  {"uacute", 250}, {"ucirc", 251},  {"ugrave", 249},
    {"uuml", 252},   {"yacute", 253}, {"yen", 165},    {"yuml", 255}};

static_assert(std::size(kEntities) == 94);

// Whether no two neighbours in the table are in a relation.
template <class TRelation>
constexpr bool NoNeighbours(TRelation relation) {
    return std::adjacent_find(std::begin(kEntities), std::end(kEntities), relation) ==
           std::end(kEntities);
}

// With these a text begins with one name at most, and names of one first letter stand together.
static_assert(NoNeighbours([](const Entity& a, const Entity& b) { return a.name >= b.name; }),
              "the names ascend");
static_assert(NoNeighbours([](const Entity& a, const Entity& b) {
                  return b.name.starts_with(a.name);
              }),
              "no name begins another one");
