#include "VeltoMKV/OptionsPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionButton>
#include <QVBoxLayout>

#include "VeltoKit/job/JobOutputs.h"
#include "VeltoKit/providers/Preferences.h"
#include "VeltoKit/translation/SpanishVariant.h"
#include "VeltoKit/translation/TranslationCache.h"
#include "VeltoMKV/Confirm.h"
#include "VeltoMKV/Look.h"
#include "VeltoMKV/WheelGuard.h"

namespace velto {
namespace {

// What the cached translations take on disk.
qint64 cacheBytes() {
    return TranslationCache::diskBytes(Preferences::cacheDirectory());
}

// "2,0 kB", "1,3 MB": units as a file manager writes them.
QString sizeText(qint64 bytes) {
    return QLocale(QLocale::Spanish)
        .formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

// The choices in the words of the window; the order is the picker's.
QString outputsLabel(JobOutputs outputs) {
    switch (outputs) {
    case JobOutputs::video:
        return QStringLiteral("Video con la pista nueva");
    case JobOutputs::videoAndSidecar:
        return QStringLiteral("Video y archivo de subtítulos");
    case JobOutputs::sidecarOnly:
        return QStringLiteral("Solo el archivo de subtítulos");
    }
    return {};
}

// Where a toggle's text starts, so what belongs to it lines up under that text.
int textIndent(QCheckBox* toggle) {
    QStyleOptionButton option;
    option.initFrom(toggle);
    return toggle->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, toggle).left();
}

QLabel* helpFor(QCheckBox* toggle, const QString& text, QWidget* parent) {
    QLabel* help = Look::secondary(text, parent);
    help->setContentsMargins(textIndent(toggle), 0, 0, 0);
    return help;
}

} // namespace

OptionsPanel::OptionsPanel(Preferences& preferences, QWidget* parent)
    : QWidget(parent)
    , m_preferences(preferences) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap / 2);

    auto* fields = new QGridLayout();
    fields->setHorizontalSpacing(Look::rowGap);
    fields->setVerticalSpacing(Look::rowGap / 2);
    m_variant = new QComboBox(this);
    for (SpanishVariant variant : allSpanishVariants())
        m_variant->addItem(label(variant), rawValue(variant));
    auto* variantLabel = new QLabel(QStringLiteral("Variante del español"), this);
    variantLabel->setBuddy(m_variant);
    fields->addWidget(variantLabel, 0, 0);
    fields->addWidget(m_variant, 0, 1);
    m_trackTitle = new QLineEdit(this);
    auto* titleLabel = new QLabel(QStringLiteral("Título de la pista"), this);
    titleLabel->setBuddy(m_trackTitle);
    fields->addWidget(titleLabel, 1, 0);
    fields->addWidget(m_trackTitle, 1, 1);
    m_outputs = new QComboBox(this);
    // Its longest choice must not widen the panel past what the variant picker needs.
    m_outputs->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_outputs->setMinimumContentsLength(20);
    for (JobOutputs outputs : allJobOutputs())
        m_outputs->addItem(outputsLabel(outputs), rawValue(outputs));
    auto* outputsCaption = new QLabel(QStringLiteral("Qué guardar"), this);
    outputsCaption->setBuddy(m_outputs);
    fields->addWidget(outputsCaption, 2, 0);
    fields->addWidget(m_outputs, 2, 1);
    fields->addWidget(Look::secondary(QStringLiteral("El archivo de subtítulos va junto al video "
                                                     "original, con el nombre que leen Jellyfin, "
                                                     "Plex y Kodi: Película.es.srt."),
                                      this),
                      3, 1);
    fields->setColumnStretch(1, 1);
    layout->addLayout(fields);
    layout->addSpacing(Look::rowGap / 2);

    m_stripSDH = new QCheckBox(QStringLiteral("Quitar descripciones para sordos (SDH)"), this);
    layout->addWidget(m_stripSDH);
    layout->addWidget(helpFor(m_stripSDH,
                              QStringLiteral("Quita descripciones de sonido ([música], [ladra]) y "
                                             "etiquetas de hablante."),
                              this));
    m_stripParens =
        new QCheckBox(QStringLiteral("Quitar también lo que esté entre paréntesis"), this);
    auto* parensRow = new QHBoxLayout();
    parensRow->addSpacing(textIndent(m_stripSDH));
    parensRow->addWidget(m_stripParens);
    layout->addLayout(parensRow);

    m_makeDefault =
        new QCheckBox(QStringLiteral("Dejar el español como pista predeterminada"), this);
    layout->addWidget(m_makeDefault);
    layout->addWidget(
        helpFor(m_makeDefault,
                QStringLiteral("El reproductor arranca mostrando los subtítulos nuevos."), this));

    m_useCache = new QCheckBox(QStringLiteral("Usar caché de traducciones"), this);
    layout->addWidget(m_useCache);
    layout->addWidget(
        helpFor(m_useCache,
                QStringLiteral("La caché deja retomar donde quedó si cancelás o falla "
                               "algo, sin volver a traducir lo ya hecho."),
                this));
    auto* cacheRow = new QHBoxLayout();
    cacheRow->addSpacing(textIndent(m_useCache));
    m_emptyCache = Look::button(QStringLiteral("Vaciar caché"), this);
    m_emptyCache->setAutoDefault(false);
    cacheRow->addWidget(m_emptyCache);
    m_cacheSize = Look::secondary(QString(), this);
    cacheRow->addWidget(m_cacheSize, 1);
    layout->addLayout(cacheRow);
    connect(m_emptyCache, &QPushButton::clicked, this, &OptionsPanel::emptyCache);
    layout->addSpacing(Look::rowGap / 2);

    auto* steppers = new QHBoxLayout();
    steppers->setSpacing(Look::rowGap);
    m_batchSize = new QSpinBox(this);
    m_batchSize->setRange(1, 200);
    auto* batchLabel = new QLabel(QStringLiteral("Subtítulos por pedido:"), this);
    batchLabel->setBuddy(m_batchSize);
    m_concurrency = new QSpinBox(this);
    m_concurrency->setRange(1, 16);
    auto* concurrencyLabel = new QLabel(QStringLiteral("Pedidos en paralelo:"), this);
    concurrencyLabel->setBuddy(m_concurrency);
    steppers->addWidget(batchLabel);
    steppers->addWidget(m_batchSize);
    steppers->addSpacing(Look::rowGap);
    steppers->addWidget(concurrencyLabel);
    steppers->addWidget(m_concurrency);
    steppers->addStretch();
    layout->addLayout(steppers);

    for (QWidget* control :
         {static_cast<QWidget*>(m_variant), static_cast<QWidget*>(m_outputs),
          static_cast<QWidget*>(m_batchSize), static_cast<QWidget*>(m_concurrency)})
        guardWheel(control);
    showPreferences();

    connect(m_variant, &QComboBox::currentIndexChanged, this,
            [this] { m_preferences.setVariantRaw(m_variant->currentData().toString()); });
    connect(m_outputs, &QComboBox::currentIndexChanged, this, [this] {
        if (auto outputs = jobOutputsFromRawValue(m_outputs->currentData().toString()))
            m_preferences.setOutputs(*outputs);
    });
    connect(m_stripSDH, &QCheckBox::toggled, this,
            [this](bool on) { m_preferences.setStripSDH(on); });
    connect(m_stripParens, &QCheckBox::toggled, this,
            [this](bool on) { m_preferences.setStripParens(on); });
    connect(m_makeDefault, &QCheckBox::toggled, this,
            [this](bool on) { m_preferences.setMakeDefault(on); });
    connect(m_useCache, &QCheckBox::toggled, this,
            [this](bool on) { m_preferences.setUseCache(on); });
    connect(m_trackTitle, &QLineEdit::textEdited, this,
            [this](const QString& title) { m_preferences.setTrackTitle(title); });
    connect(m_batchSize, &QSpinBox::valueChanged, this,
            [this](int size) { m_preferences.setBatchSize(size); });
    connect(m_concurrency, &QSpinBox::valueChanged, this,
            [this](int requests) { m_preferences.setConcurrency(requests); });
    connect(&m_preferences, &Preferences::jobOptionsChanged, this, [this] {
        showPreferences();
        emit summaryChanged();
    });
}

void OptionsPanel::showCacheSize() {
    const qint64 bytes = cacheBytes();
    m_cacheSize->setText(bytes > 0 ? QStringLiteral("Ocupa ") + sizeText(bytes)
                                   : QStringLiteral("La caché está vacía."));
    m_emptyCache->setEnabled(bytes > 0);
}

void OptionsPanel::emptyCache() {
    const qint64 bytes = cacheBytes();
    if (!Confirm::emptyCache(this, sizeText(bytes)))
        return;
    TranslationCache::clearAll(Preferences::cacheDirectory());
    showCacheSize();
}

void OptionsPanel::showEvent(QShowEvent* event) {
    // A job may have filled the cache since the panel was last open.
    showCacheSize();
    QWidget::showEvent(event);
}

QString OptionsPanel::summary() const {
    // The picker's label up to its parenthesis: "Neutro (recomendado)" reads "Neutro".
    const QString variant = label(m_preferences.variant()).section(QStringLiteral(" ("), 0, 0);
    QStringList parts = {
        variant, m_preferences.stripSDH() ? QStringLiteral("sin SDH") : QStringLiteral("con SDH"),
        m_preferences.useCache() ? QStringLiteral("caché") : QStringLiteral("sin caché")};
    if (m_preferences.makeDefault())
        parts << QStringLiteral("predeterminada");
    if (m_preferences.outputs() == JobOutputs::videoAndSidecar)
        parts << QStringLiteral("y subtítulo aparte");
    else if (m_preferences.outputs() == JobOutputs::sidecarOnly)
        parts << QStringLiteral("solo el subtítulo");
    return parts.join(QStringLiteral(" · "));
}

void OptionsPanel::showPreferences() {
    const QSignalBlocker blockVariant(m_variant), blockOutputs(m_outputs), blockSDH(m_stripSDH),
        blockParens(m_stripParens), blockDefault(m_makeDefault), blockTitle(m_trackTitle),
        blockBatch(m_batchSize), blockConcurrency(m_concurrency), blockCache(m_useCache);
    m_variant->setCurrentIndex(m_variant->findData(rawValue(m_preferences.variant())));
    m_outputs->setCurrentIndex(m_outputs->findData(rawValue(m_preferences.outputs())));
    m_stripSDH->setChecked(m_preferences.stripSDH());
    m_stripParens->setChecked(m_preferences.stripParens());
    m_stripParens->setEnabled(m_preferences.stripSDH());
    m_makeDefault->setChecked(m_preferences.makeDefault());
    if (m_trackTitle->text() != m_preferences.trackTitle())
        m_trackTitle->setText(m_preferences.trackTitle());
    m_batchSize->setValue(static_cast<int>(m_preferences.batchSize()));
    m_concurrency->setValue(static_cast<int>(m_preferences.concurrency()));
    m_useCache->setChecked(m_preferences.useCache());
}

} // namespace velto
