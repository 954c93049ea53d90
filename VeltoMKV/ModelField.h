#pragma once

#include <optional>

#include <QWidget>

#include "VeltoKit/providers/Provider.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velto {

class EngineQueries;
class Preferences;
class Spinner;

// "Modelo": the provider's own stored model, and «Buscar», which asks the service which models
// the key may use and offers them for choice.
class ModelField : public QWidget {
    Q_OBJECT

public:
    ModelField(Preferences& preferences, EngineQueries& queries, QWidget* parent);

    void show(const Provider& provider);

private:
    void search();
    void listed(const QStringList& models);
    void setStatus(const QString& text, bool failed);

    Preferences& m_preferences;
    EngineQueries& m_queries;
    std::optional<Provider> m_provider;
    QLineEdit* m_field = nullptr;
    QPushButton* m_search = nullptr;
    Spinner* m_spinner = nullptr;
    QComboBox* m_found = nullptr;
    QLabel* m_explanation = nullptr;
    QLabel* m_status = nullptr;
};

} // namespace velto
