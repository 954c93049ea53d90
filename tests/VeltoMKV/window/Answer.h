#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QString>
#include <QTimer>

namespace velto::test {

// Clicks `answer` in the next question the program asks, and keeps the question's text.
class Answer {
public:
    explicit Answer(QString answer)
        : m_answer(std::move(answer)) {
        QTimer::singleShot(0, [this] { click(); });
    }
    const QString& question() const { return m_question; }

private:
    void click() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            QTimer::singleShot(5, [this] { click(); });
            return;
        }
        m_question = box->text();
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == m_answer)
                button->click();
        }
    }
    QString m_answer;
    QString m_question;
};

} // namespace velto::test
