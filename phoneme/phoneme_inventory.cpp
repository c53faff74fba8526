#include "phoneme/phoneme_inventory.h"

#include <cstring>

namespace Zelmor {

namespace {

const char* const syllableVowels[] = {"iy", "ih", "ey", "eh", "ae", "aa", "ao", "ow",
                                      "uh", "uw", "er", "ax", "ah", "ay", "aw", "oy"};

const char* const nucleusClass1[] = {"ih", "eh", "ae", "aa", "ah", "uh", "ax", "iy",
                                     "uw", "ao", "er", "ey", "ay", "oy", "ow", "aw",
                                     "a",  "i",  "u",  "e",  "o",  "N"};
const char* const nucleusClass2[] = {"w", "y", "m", "ng", "v", "z", "zh", "jh", "l"};
const char* const nucleusClass3[] = {"f", "s", "th", "sh", "hh"};

template <size_t N>
bool isLeadingPartOfAny(const char* const (&members)[N], const std::string& token)
{
    for (const char* member : members)
        if (std::strncmp(token.c_str(), member, token.size()) == 0)
            return true;
    return false;
}

} // namespace

bool isSyllableVowel(const std::string& token)
{
    if (token.size() != 2)
        return false;
    for (const char* vowel : syllableVowels)
        if (token[0] == vowel[0] && token[1] == vowel[1])
            return true;
    return false;
}

bool inNucleusClass(int cls, const std::string& token)
{
    switch (cls) {
    case 0: return isLeadingPartOfAny(nucleusClass1, token);
    case 1: return isLeadingPartOfAny(nucleusClass2, token);
    case 2: return isLeadingPartOfAny(nucleusClass3, token);
    default: return false;
    }
}

const std::map<std::string, std::string>& phonemeAliases()
{
    static const std::map<std::string, std::string> aliases = {
        {"ax", "ah"}, {"nx", "ng"}, {"wh", "w"}};
    return aliases;
}

// Row order matters: the first hit wins ("ドゥ" stands twice on purpose).
const KanaDigraph kanaDigraphTable[kanaDigraphCount] = {
    {0x30AD, 0x30E3, "ky a"}, // キャ
    {0x30AE, 0x30E3, "gy a"}, // ギャ
    {0x30AD, 0x30E5, "ky u"}, // キュ
    {0x30AE, 0x30E5, "gy u"}, // ギュ
    {0x30AD, 0x30A7, "ky e"}, // キェ
    {0x30AE, 0x30A7, "gy e"}, // ギェ
    {0x30AD, 0x30E7, "ky o"}, // キョ
    {0x30AE, 0x30E7, "gy o"}, // ギョ
    {0x30B7, 0x30E3, "sh a"}, // シャ
    {0x30B8, 0x30E3, "j a"}, // ジャ
    {0x30B7, 0x30E5, "sh u"}, // シュ
    {0x30B8, 0x30E5, "j u"}, // ジュ
    {0x30B7, 0x30A7, "sh e"}, // シェ
    {0x30B8, 0x30A7, "j e"}, // ジェ
    {0x30B7, 0x30E7, "sh o"}, // ショ
    {0x30B8, 0x30E7, "j o"}, // ジョ
    {0x30C1, 0x30E3, "ch a"}, // チャ
    {0x30C2, 0x30E3, "j a"}, // ヂャ
    {0x30C1, 0x30E5, "ch u"}, // チュ
    {0x30C2, 0x30E5, "j u"}, // ヂュ
    {0x30C1, 0x30A7, "ch e"}, // チェ
    {0x30C2, 0x30A7, "j e"}, // ヂェ
    {0x30C1, 0x30E7, "ch o"}, // チョ
    {0x30C2, 0x30E7, "j o"}, // ヂョ
    {0x30C6, 0x30E3, "ty a"}, // テャ
    {0x30C7, 0x30E3, "dy a"}, // デャ
    {0x30C6, 0x30A3, "t i"}, // ティ
    {0x30C7, 0x30A3, "d i"}, // ディ
    {0x30C6, 0x30E5, "ty u"}, // テュ
    {0x30C7, 0x30E5, "dy u"}, // デュ
    {0x30C6, 0x30A7, "ty e"}, // テェ
    {0x30C7, 0x30A7, "dy e"}, // デェ
    {0x30C6, 0x30E7, "ty o"}, // テョ
    {0x30C7, 0x30E7, "dy o"}, // デョ
    {0x30CB, 0x30E3, "ny a"}, // ニャ
    {0x30CB, 0x30E5, "ny u"}, // ニュ
    {0x30CB, 0x30A7, "ny e"}, // ニェ
    {0x30CB, 0x30E7, "ny o"}, // ニョ
    {0x30D2, 0x30E3, "hy a"}, // ヒャ
    {0x30D3, 0x30E3, "by a"}, // ビャ
    {0x30D4, 0x30E3, "py a"}, // ピャ
    {0x30D2, 0x30E5, "hy u"}, // ヒュ
    {0x30D3, 0x30E5, "by u"}, // ビュ
    {0x30D4, 0x30E5, "py u"}, // ピュ
    {0x30D2, 0x30A7, "hy e"}, // ヒェ
    {0x30D3, 0x30A7, "by e"}, // ビェ
    {0x30D4, 0x30A7, "py e"}, // ピェ
    {0x30D2, 0x30E7, "hy o"}, // ヒョ
    {0x30D3, 0x30E7, "by o"}, // ビョ
    {0x30D4, 0x30E7, "py o"}, // ピョ
    {0x30DF, 0x30E3, "my a"}, // ミャ
    {0x30DF, 0x30E5, "my u"}, // ミュ
    {0x30DF, 0x30A7, "my e"}, // ミェ
    {0x30DF, 0x30E7, "my o"}, // ミョ
    {0x30EA, 0x30E3, "ry a"}, // リャ
    {0x30EA, 0x30E5, "ry u"}, // リュ
    {0x30EA, 0x30A7, "ry e"}, // リェ
    {0x30EA, 0x30E7, "ry o"}, // リョ
    {0x30D5, 0x30E3, "f y a"}, // フャ
    {0x30F4, 0x30E3, "v y a"}, // ヴャ
    {0x30D5, 0x30E5, "f y u"}, // フュ
    {0x30F4, 0x30E5, "v y u"}, // ヴュ
    {0x30AF, 0x30A1, "k w a"}, // クァ
    {0x30B0, 0x30A1, "g w a"}, // グァ
    {0x30AF, 0x30A3, "k w i"}, // クィ
    {0x30B0, 0x30A3, "g w i"}, // グィ
    {0x30AF, 0x30A5, "k w u"}, // クゥ
    {0x30B0, 0x30A5, "g w u"}, // グゥ
    {0x30AF, 0x30A7, "k w e"}, // クェ
    {0x30B0, 0x30A7, "g w e"}, // グェ
    {0x30AF, 0x30A9, "k w o"}, // クォ
    {0x30B0, 0x30A9, "g w o"}, // グォ
    {0x30D6, 0x30A1, "b w a"}, // ブァ
    {0x30D6, 0x30A3, "b w i"}, // ブィ
    {0x30D6, 0x30A7, "b w e"}, // ブェ
    {0x30D6, 0x30A9, "b w o"}, // ブォ
    {0x30D7, 0x30A1, "p w a"}, // プァ
    {0x30D7, 0x30A3, "p w i"}, // プィ
    {0x30D7, 0x30A7, "p w e"}, // プェ
    {0x30D7, 0x30A9, "p w o"}, // プォ
    {0x30A6, 0x30A3, "w i"}, // ウィ
    {0x30A6, 0x30A7, "w e"}, // ウェ
    {0x30A6, 0x30A9, "w o"}, // ウォ
    {0x30B9, 0x30A3, "s i"}, // スィ
    {0x30BA, 0x30A3, "z i"}, // ズィ
    {0x30C4, 0x30A1, "ts a"}, // ツァ
    {0x30C4, 0x30A3, "ts i"}, // ツィ
    {0x30C4, 0x30A7, "ts e"}, // ツェ
    {0x30C4, 0x30A9, "ts o"}, // ツォ
    {0x30C9, 0x30A5, "d u"}, // ドゥ
    {0x30D5, 0x30A1, "f a"}, // ファ
    {0x30F4, 0x30A1, "v a"}, // ヴァ
    {0x30D5, 0x30A3, "f i"}, // フィ
    {0x30F4, 0x30A3, "v i"}, // ヴィ
    {0x30D5, 0x30A7, "f e"}, // フェ
    {0x30F4, 0x30A7, "v e"}, // ヴェ
    {0x30D5, 0x30A9, "f o"}, // フォ
    {0x30F4, 0x30A9, "v o"}, // ヴォ
    {0x30C8, 0x30A5, "t u"}, // トゥ
    {0x30C9, 0x30A5, "d u"}, // ドゥ
    {0x30A3, 0x30A7, "y e"}, // ィェ
    {0x30A4, 0x30A7, "y e"}, // イェ
};

const KanaMonograph kanaMonographTable[kanaMonographCount] = {
    {0x30A1, "a"}, // ァ
    {0x30A2, "a"}, // ア
    {0x30A3, "i"}, // ィ
    {0x30A4, "i"}, // イ
    {0x30A5, "u"}, // ゥ
    {0x30A6, "u"}, // ウ
    {0x30A7, "e"}, // ェ
    {0x30A8, "e"}, // エ
    {0x30A9, "o"}, // ォ
    {0x30AA, "o"}, // オ
    {0x30AB, "k a"}, // カ
    {0x30AC, "g a"}, // ガ
    {0x30AD, "k i"}, // キ
    {0x30AE, "g i"}, // ギ
    {0x30AF, "k u"}, // ク
    {0x30B0, "g u"}, // グ
    {0x30B1, "k e"}, // ケ
    {0x30B2, "g e"}, // ゲ
    {0x30B3, "k o"}, // コ
    {0x30B4, "g o"}, // ゴ
    {0x30B5, "s a"}, // サ
    {0x30B6, "z a"}, // ザ
    {0x30B7, "sh i"}, // シ
    {0x30B8, "j i"}, // ジ
    {0x30B9, "s u"}, // ス
    {0x30BA, "z u"}, // ズ
    {0x30BB, "s e"}, // セ
    {0x30BC, "z e"}, // ゼ
    {0x30BD, "s o"}, // ソ
    {0x30BE, "z o"}, // ゾ
    {0x30BF, "t a"}, // タ
    {0x30C0, "d a"}, // ダ
    {0x30C1, "ch i"}, // チ
    {0x30C2, "j i"}, // ヂ
    {0x30C3, "cl"}, // ッ
    {0x30C4, "ts u"}, // ツ
    {0x30C5, "z u"}, // ヅ
    {0x30C6, "t e"}, // テ
    {0x30C7, "d e"}, // デ
    {0x30C8, "t o"}, // ト
    {0x30C9, "d o"}, // ド
    {0x30CA, "n a"}, // ナ
    {0x30CB, "n i"}, // ニ
    {0x30CC, "n u"}, // ヌ
    {0x30CD, "n e"}, // ネ
    {0x30CE, "n o"}, // ノ
    {0x30CF, "h a"}, // ハ
    {0x30D0, "b a"}, // バ
    {0x30D1, "p a"}, // パ
    {0x30D2, "h i"}, // ヒ
    {0x30D3, "b i"}, // ビ
    {0x30D4, "p i"}, // ピ
    {0x30D5, "f u"}, // フ
    {0x30D6, "b u"}, // ブ
    {0x30D7, "p u"}, // プ
    {0x30D8, "h e"}, // ヘ
    {0x30D9, "b e"}, // ベ
    {0x30DA, "p e"}, // ペ
    {0x30DB, "h o"}, // ホ
    {0x30DC, "b o"}, // ボ
    {0x30DD, "p o"}, // ポ
    {0x30DE, "m a"}, // マ
    {0x30DF, "m i"}, // ミ
    {0x30E0, "m u"}, // ム
    {0x30E1, "m e"}, // メ
    {0x30E2, "m o"}, // モ
    {0x30E3, "y a"}, // ャ
    {0x30E4, "y a"}, // ヤ
    {0x30E5, "y u"}, // ュ
    {0x30E6, "y u"}, // ユ
    {0x30E7, "y o"}, // ョ
    {0x30E8, "y o"}, // ヨ
    {0x30E9, "r a"}, // ラ
    {0x30EA, "r i"}, // リ
    {0x30EB, "r u"}, // ル
    {0x30EC, "r e"}, // レ
    {0x30ED, "r o"}, // ロ
    {0x30EE, "w a"}, // ヮ
    {0x30EF, "w a"}, // ワ
    {0x30F0, "i"}, // ヰ
    {0x30F1, "e"}, // ヱ
    {0x30F2, "wo"}, // ヲ
    {0x30F3, "N"}, // ン
    {0x30F4, "v u"}, // ヴ
    {0x30FC, "-"}, // ー
};

char32_t foldKana(char32_t cp)
{
    if (cp >= 0x3041 && cp <= 0x3094)
        return cp + 0x60;
    if (cp >= 0x30A1 && cp <= 0x30F4)
        return cp;
    return 0;
}

const char* findKanaDigraph(char32_t first, char32_t second)
{
    for (const auto& row : kanaDigraphTable)
        if (row.first == first && row.second == second)
            return row.phonemes;
    return nullptr;
}

const char* findKanaMonograph(char32_t kana)
{
    // The rows run U+30A1..U+30F4 without a gap, then the long-vowel mark.
    if (kana >= 0x30A1 && kana <= 0x30F4)
        return kanaMonographTable[kana - 0x30A1].phonemes;
    if (kana == longVowelMark)
        return kanaMonographTable[kanaMonographCount - 1].phonemes;
    return nullptr;
}

} // namespace Zelmor
