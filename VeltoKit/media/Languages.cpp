#include "VeltoKit/media/Languages.h"

#include <QHash>
#include <QRegularExpression>

namespace velto::Languages {

namespace {

struct Language {
    const char* alpha2;      // ISO 639-1, empty when the language has none
    const char* code;        // ISO 639-2/B, the normalised form
    const char* terminology; // ISO 639-2/T when it differs from the bibliographic code
    const char* spanish;     // Spanish names, '|'-separated; the first is the display name
    const char* english;     // English names, '|'-separated
};

// Every ISO 639-1 language, then the few codes without one that subtitle files use.
constexpr Language languages[] = {
    {"aa", "aar", "", "afar", "Afar"},
    {"ab", "abk", "", "abjasio", "Abkhazian|Abkhaz"},
    {"af", "afr", "", "afrikáans", "Afrikaans"},
    {"ak", "aka", "", "akan", "Akan"},
    {"am", "amh", "", "amárico", "Amharic"},
    {"ar", "ara", "", "árabe", "Arabic"},
    {"an", "arg", "", "aragonés", "Aragonese"},
    {"as", "asm", "", "asamés", "Assamese"},
    {"av", "ava", "", "avar", "Avaric|Avar"},
    {"ae", "ave", "", "avéstico", "Avestan"},
    {"ay", "aym", "", "aimara", "Aymara"},
    {"az", "aze", "", "azerbaiyano|azerí", "Azerbaijani|Azeri"},
    {"ba", "bak", "", "baskir", "Bashkir"},
    {"bm", "bam", "", "bambara", "Bambara"},
    {"be", "bel", "", "bielorruso", "Belarusian"},
    {"bn", "ben", "", "bengalí", "Bengali|Bangla"},
    {"bh", "bih", "", "bihari", "Bihari|Bihari languages"},
    {"bi", "bis", "", "bislama", "Bislama"},
    {"bo", "tib", "bod", "tibetano", "Tibetan"},
    {"bs", "bos", "", "bosnio", "Bosnian"},
    {"br", "bre", "", "bretón", "Breton"},
    {"bg", "bul", "", "búlgaro", "Bulgarian"},
    {"ca", "cat", "", "catalán|valenciano", "Catalan|Valencian"},
    {"cs", "cze", "ces", "checo", "Czech"},
    {"ch", "cha", "", "chamorro", "Chamorro"},
    {"ce", "che", "", "checheno", "Chechen"},
    {"cu", "chu", "", "eslavo eclesiástico", "Church Slavic|Church Slavonic|Old Church Slavonic"},
    {"cv", "chv", "", "chuvasio", "Chuvash"},
    {"kw", "cor", "", "córnico", "Cornish"},
    {"co", "cos", "", "corso", "Corsican"},
    {"cr", "cre", "", "cree", "Cree"},
    {"cy", "wel", "cym", "galés", "Welsh"},
    {"da", "dan", "", "danés", "Danish"},
    {"de", "ger", "deu", "alemán", "German"},
    {"dv", "div", "", "divehi|maldivo", "Divehi|Dhivehi|Maldivian"},
    {"dz", "dzo", "", "dzongkha|butanés", "Dzongkha"},
    {"el", "gre", "ell", "griego", "Greek|Modern Greek"},
    {"en", "eng", "", "inglés", "English"},
    {"eo", "epo", "", "esperanto", "Esperanto"},
    {"et", "est", "", "estonio", "Estonian"},
    {"eu", "baq", "eus", "euskera|vasco", "Basque"},
    {"ee", "ewe", "", "ewe", "Ewe"},
    {"fo", "fao", "", "feroés", "Faroese"},
    {"fa", "per", "fas", "persa|farsi", "Persian|Farsi"},
    {"fj", "fij", "", "fiyiano", "Fijian"},
    {"fi", "fin", "", "finés|finlandés", "Finnish"},
    {"fr", "fre", "fra", "francés", "French"},
    {"fy", "fry", "", "frisón", "Western Frisian|Frisian"},
    {"ff", "ful", "", "fula", "Fulah|Fula"},
    {"gd", "gla", "", "gaélico escocés", "Scottish Gaelic|Gaelic"},
    {"ga", "gle", "", "irlandés", "Irish"},
    {"gl", "glg", "", "gallego", "Galician"},
    {"gv", "glv", "", "manés", "Manx"},
    {"gn", "grn", "", "guaraní", "Guarani"},
    {"gu", "guj", "", "guyaratí", "Gujarati"},
    {"ht", "hat", "", "criollo haitiano|haitiano", "Haitian Creole|Haitian"},
    {"ha", "hau", "", "hausa", "Hausa"},
    {"he", "heb", "", "hebreo", "Hebrew"},
    {"hz", "her", "", "herero", "Herero"},
    {"hi", "hin", "", "hindi", "Hindi"},
    {"ho", "hmo", "", "hiri motu", "Hiri Motu"},
    {"hr", "hrv", "", "croata", "Croatian"},
    {"hu", "hun", "", "húngaro", "Hungarian"},
    {"hy", "arm", "hye", "armenio", "Armenian"},
    {"ig", "ibo", "", "igbo", "Igbo"},
    {"io", "ido", "", "ido", "Ido"},
    {"ii", "iii", "", "yi de Sichuán", "Sichuan Yi|Nuosu"},
    {"iu", "iku", "", "inuktitut", "Inuktitut"},
    {"ie", "ile", "", "interlingue|occidental", "Interlingue|Occidental"},
    {"ia", "ina", "", "interlingua", "Interlingua"},
    {"id", "ind", "", "indonesio", "Indonesian"},
    {"ik", "ipk", "", "inupiaq", "Inupiaq"},
    {"is", "ice", "isl", "islandés", "Icelandic"},
    {"it", "ita", "", "italiano", "Italian"},
    {"jv", "jav", "", "javanés", "Javanese"},
    {"ja", "jpn", "", "japonés", "Japanese"},
    {"kl", "kal", "", "groenlandés", "Kalaallisut|Greenlandic"},
    {"kn", "kan", "", "canarés|kannada", "Kannada"},
    {"ks", "kas", "", "cachemir", "Kashmiri"},
    {"ka", "geo", "kat", "georgiano", "Georgian"},
    {"kr", "kau", "", "kanuri", "Kanuri"},
    {"kk", "kaz", "", "kazajo", "Kazakh"},
    {"km", "khm", "", "jemer|camboyano", "Khmer|Central Khmer|Cambodian"},
    {"ki", "kik", "", "kikuyu", "Kikuyu|Gikuyu"},
    {"rw", "kin", "", "kinyarwanda", "Kinyarwanda"},
    {"ky", "kir", "", "kirguís", "Kyrgyz|Kirghiz"},
    {"kv", "kom", "", "komi", "Komi"},
    {"kg", "kon", "", "kongo", "Kongo"},
    {"ko", "kor", "", "coreano", "Korean"},
    {"kj", "kua", "", "kuanyama", "Kuanyama|Kwanyama"},
    {"ku", "kur", "", "kurdo", "Kurdish"},
    {"lo", "lao", "", "lao|laosiano", "Lao|Laotian"},
    {"la", "lat", "", "latín", "Latin"},
    {"lv", "lav", "", "letón", "Latvian"},
    {"li", "lim", "", "limburgués", "Limburgish|Limburgan|Limburger"},
    {"ln", "lin", "", "lingala", "Lingala"},
    {"lt", "lit", "", "lituano", "Lithuanian"},
    {"lb", "ltz", "", "luxemburgués", "Luxembourgish|Letzeburgesch"},
    {"lu", "lub", "", "luba-katanga", "Luba-Katanga"},
    {"lg", "lug", "", "luganda|ganda", "Ganda|Luganda"},
    {"mh", "mah", "", "marshalés", "Marshallese"},
    {"ml", "mal", "", "malayalam", "Malayalam"},
    {"mr", "mar", "", "maratí", "Marathi"},
    {"mk", "mac", "mkd", "macedonio", "Macedonian"},
    {"mg", "mlg", "", "malgache", "Malagasy"},
    {"mt", "mlt", "", "maltés", "Maltese"},
    {"mn", "mon", "", "mongol", "Mongolian"},
    {"mi", "mao", "mri", "maorí", "Maori"},
    {"ms", "may", "msa", "malayo", "Malay"},
    {"my", "bur", "mya", "birmano", "Burmese"},
    {"na", "nau", "", "nauruano", "Nauru|Nauruan"},
    {"nv", "nav", "", "navajo", "Navajo|Navaho"},
    {"nr", "nbl", "", "ndebele del sur", "South Ndebele"},
    {"nd", "nde", "", "ndebele del norte", "North Ndebele"},
    {"ng", "ndo", "", "ndonga", "Ndonga"},
    {"ne", "nep", "", "nepalí", "Nepali"},
    {"nl", "dut", "nld", "neerlandés|holandés|flamenco", "Dutch|Flemish"},
    {"nn", "nno", "", "noruego nynorsk|nynorsk", "Norwegian Nynorsk|Nynorsk"},
    {"nb", "nob", "", "noruego bokmål|bokmål", "Norwegian Bokmål|Bokmål|Bokmal"},
    {"no", "nor", "", "noruego", "Norwegian"},
    {"ny", "nya", "", "chichewa|nyanja", "Chichewa|Chewa|Nyanja"},
    {"oc", "oci", "", "occitano|provenzal", "Occitan|Provençal"},
    {"oj", "oji", "", "ojibwa", "Ojibwa|Ojibwe"},
    {"or", "ori", "", "oriya", "Oriya|Odia"},
    {"om", "orm", "", "oromo", "Oromo"},
    {"os", "oss", "", "osético", "Ossetian|Ossetic"},
    {"pa", "pan", "", "panyabí|punyabí", "Punjabi|Panjabi"},
    {"pi", "pli", "", "pali", "Pali"},
    {"pl", "pol", "", "polaco", "Polish"},
    {"pt", "por", "", "portugués", "Portuguese"},
    {"ps", "pus", "", "pastún", "Pashto|Pushto"},
    {"qu", "que", "", "quechua", "Quechua"},
    {"rm", "roh", "", "romanche", "Romansh"},
    {"ro", "rum", "ron", "rumano|moldavo", "Romanian|Moldavian|Moldovan"},
    {"rn", "run", "", "kirundi", "Rundi|Kirundi"},
    {"ru", "rus", "", "ruso", "Russian"},
    {"sg", "sag", "", "sango", "Sango"},
    {"sa", "san", "", "sánscrito", "Sanskrit"},
    {"si", "sin", "", "cingalés", "Sinhala|Sinhalese"},
    {"sk", "slo", "slk", "eslovaco", "Slovak"},
    {"sl", "slv", "", "esloveno", "Slovenian|Slovene"},
    {"se", "sme", "", "sami septentrional", "Northern Sami"},
    {"sm", "smo", "", "samoano", "Samoan"},
    {"sn", "sna", "", "shona", "Shona"},
    {"sd", "snd", "", "sindhi", "Sindhi"},
    {"so", "som", "", "somalí", "Somali"},
    {"st", "sot", "", "sesotho|sotho del sur", "Southern Sotho|Sotho|Sesotho"},
    {"es", "spa", "", "español|castellano", "Spanish|Castilian"},
    {"sq", "alb", "sqi", "albanés", "Albanian"},
    {"sc", "srd", "", "sardo", "Sardinian"},
    {"sr", "srp", "", "serbio", "Serbian"},
    {"ss", "ssw", "", "suazi", "Swati|Swazi"},
    {"su", "sun", "", "sundanés", "Sundanese"},
    {"sw", "swa", "", "suajili", "Swahili"},
    {"sv", "swe", "", "sueco", "Swedish"},
    {"ty", "tah", "", "tahitiano", "Tahitian"},
    {"ta", "tam", "", "tamil", "Tamil"},
    {"tt", "tat", "", "tártaro", "Tatar"},
    {"te", "tel", "", "telugu", "Telugu"},
    {"tg", "tgk", "", "tayiko", "Tajik"},
    {"tl", "tgl", "", "tagalo", "Tagalog"},
    {"th", "tha", "", "tailandés", "Thai"},
    {"ti", "tir", "", "tigriña", "Tigrinya"},
    {"to", "ton", "", "tongano", "Tongan|Tonga"},
    {"tn", "tsn", "", "setsuana", "Tswana|Setswana"},
    {"ts", "tso", "", "tsonga", "Tsonga"},
    {"tk", "tuk", "", "turcomano", "Turkmen"},
    {"tr", "tur", "", "turco", "Turkish"},
    {"tw", "twi", "", "twi", "Twi"},
    {"ug", "uig", "", "uigur", "Uyghur|Uighur"},
    {"uk", "ukr", "", "ucraniano", "Ukrainian"},
    {"ur", "urd", "", "urdu", "Urdu"},
    {"uz", "uzb", "", "uzbeko", "Uzbek"},
    {"ve", "ven", "", "venda", "Venda"},
    {"vi", "vie", "", "vietnamita", "Vietnamese"},
    {"vo", "vol", "", "volapük", "Volapük|Volapuk"},
    {"wa", "wln", "", "valón", "Walloon"},
    {"wo", "wol", "", "wolof", "Wolof"},
    {"xh", "xho", "", "xhosa", "Xhosa"},
    {"yi", "yid", "", "ídish", "Yiddish"},
    {"yo", "yor", "", "yoruba", "Yoruba"},
    {"za", "zha", "", "chuang", "Zhuang|Chuang"},
    {"zh", "chi", "zho", "chino|mandarín", "Chinese|Mandarin"},
    {"zu", "zul", "", "zulú", "Zulu"},
    // Without an ISO 639-1 code. "yue" is ISO 639-3, which recent Matroska files may carry.
    {"", "fil", "", "filipino", "Filipino"},
    {"", "ast", "", "asturiano", "Asturian"},
    {"", "haw", "", "hawaiano", "Hawaiian"},
    {"", "yue", "", "cantonés", "Cantonese"},
    {"", "mul", "", "varios idiomas", "Multiple languages"},
    {"", "zxx", "", "sin contenido lingüístico", "No linguistic content"},
    {"", "mis", "", "idioma sin código", "Uncoded languages"},
    {"", "und", "", "idioma desconocido", "Undetermined|Unknown"},
};

// Withdrawn ISO 639-1 codes that old files still carry.
constexpr const char* withdrawnCodes[][2] = {
    {"iw", "heb"}, {"in", "ind"}, {"ji", "yid"}, {"jw", "jav"}, {"mo", "rum"},
};

// Lower case without diacritics and with single spaces, so "Inglés" matches "ingles".
QString foldName(const QString& name) {
    QString folded;
    for (const QChar c : name.simplified().toLower().normalized(QString::NormalizationForm_D)) {
        if (c.category() != QChar::Mark_NonSpacing)
            folded.append(c);
    }
    return folded;
}

struct Tables {
    QHash<QString, QString> codes; // two- and three-letter codes -> normalised code
    QHash<QString, QString> names; // folded English and Spanish names -> normalised code
    QHash<QString, QString> displayNames;

    Tables() {
        for (const Language& language : languages) {
            const QString code = QString::fromLatin1(language.code);
            codes.insert(code, code);
            if (*language.alpha2)
                codes.insert(QString::fromLatin1(language.alpha2), code);
            if (*language.terminology)
                codes.insert(QString::fromLatin1(language.terminology), code);
            const QStringList spanish = QString::fromUtf8(language.spanish).split(u'|');
            displayNames.insert(code, spanish.first());
            for (const QString& name : spanish + QString::fromUtf8(language.english).split(u'|'))
                names.insert(foldName(name), code);
        }
        for (const auto& [old, code] : withdrawnCodes)
            codes.insert(QString::fromLatin1(old), QString::fromLatin1(code));
    }
};

const Tables& tables() {
    static const Tables instance;
    return instance;
}

// The normalised code of a tag or name the tables know.
std::optional<QString> lookup(const QString& tag) {
    static const QRegularExpression languageSubtag(QStringLiteral("^([a-z]{2,3})(?:[-_].*)?$"));
    const QString folded = foldName(tag);
    const Tables& t = tables();
    if (const auto match = languageSubtag.match(folded); match.hasMatch()) {
        if (const auto found = t.codes.constFind(match.captured(1)); found != t.codes.cend())
            return *found;
    }
    if (const auto found = t.names.constFind(folded); found != t.names.cend())
        return *found;
    return std::nullopt;
}

} // namespace

QString normalize(const QString& tag) {
    return lookup(tag).value_or(QStringLiteral("und"));
}

QString displayName(const QString& code) {
    if (const auto found = lookup(code))
        return tables().displayNames.value(*found);
    return code.trimmed().isEmpty() ? tables().displayNames.value(QStringLiteral("und")) : code;
}

bool isKnown(const QString& code) {
    static const QStringList placeholders = {QStringLiteral("und"), QStringLiteral("mul"),
                                             QStringLiteral("zxx"), QStringLiteral("mis")};
    return !placeholders.contains(normalize(code));
}

std::optional<QString> guessFromTitle(const QString& title) {
    constexpr auto options =
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption;
    static const std::pair<QRegularExpression, QString> patterns[] = {
        {QRegularExpression(
             QStringLiteral("espa[nñ]ol|castellano|spanish|latino|latinoam|es-?(419|la|es|mx|ar)"),
             options),
         QStringLiteral("spa")},
        {QRegularExpression(QStringLiteral("ingl[eé]s|english|eng|en-?(us|gb)"), options),
         QStringLiteral("eng")},
        {QRegularExpression(QStringLiteral("portugu[eê]s|portuguese|brasil|pt-?br"), options),
         QStringLiteral("por")},
        {QRegularExpression(QStringLiteral("fran[cç]ais|french"), options), QStringLiteral("fre")},
        {QRegularExpression(QStringLiteral("italiano|italian"), options), QStringLiteral("ita")},
    };
    for (const auto& [pattern, code] : patterns) {
        if (pattern.match(title).hasMatch())
            return code;
    }
    return std::nullopt;
}

bool looksForced(const QString& title) {
    static const QRegularExpression forced(
        QStringLiteral("\\b(forced|forzad[oa]s?|foreign[\\s-]?parts?)\\b"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return forced.match(title).hasMatch();
}

bool looksSDH(const QString& title) {
    static const QRegularExpression sdh(
        QStringLiteral("\\b(sdh|cc|hearing[\\s-]?impaired|closed[\\s-]?caption)\\b"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return sdh.match(title).hasMatch();
}

} // namespace velto::Languages
