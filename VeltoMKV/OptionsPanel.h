#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace velto {

class Preferences;

// The job's options, each control bound both ways to one setting: a change here is stored at
// once, and a change stored elsewhere (the settings window) shows here.
class OptionsPanel : public QWidget {
    Q_OBJECT

public:
    OptionsPanel(Preferences& preferences, QWidget* parent = nullptr);

    // "Neutro · sin SDH · caché": what the folded panel shows.
    QString summary() const;

    QComboBox* variantPicker() const { return m_variant; }
    QComboBox* outputsPicker() const { return m_outputs; }
    QCheckBox* stripSDHToggle() const { return m_stripSDH; }
    QCheckBox* useCacheToggle() const { return m_useCache; }
    QSpinBox* batchSizeStepper() const { return m_batchSize; }
    QPushButton* emptyCacheButton() const { return m_emptyCache; }
    // How much the cache holds, or that it holds nothing.
    QLabel* cacheSize() const { return m_cacheSize; }

signals:
    void summaryChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showPreferences();
    void showCacheSize();
    // Asks, with what it frees, then removes every cached translation.
    void emptyCache();

    Preferences& m_preferences;
    QComboBox* m_variant;
    QComboBox* m_outputs;
    QCheckBox* m_stripSDH;
    QCheckBox* m_stripParens;
    QCheckBox* m_makeDefault;
    QLineEdit* m_trackTitle;
    QSpinBox* m_batchSize;
    QSpinBox* m_concurrency;
    QCheckBox* m_useCache;
    QPushButton* m_emptyCache;
    QLabel* m_cacheSize;
};

} // namespace velto
