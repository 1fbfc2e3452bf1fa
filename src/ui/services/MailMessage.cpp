#include "ui/services/MailMessage.h"

#include <QUrl>

namespace brimvault::ui {

namespace {

std::string escaped(const QString& text) { return QUrl::toPercentEncoding(text).toStdString(); }

}  // namespace

std::string MailMessage::url() const {
    QString lines = body;
    lines.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));  // as mails have them
    const std::string to = QUrl::toPercentEncoding(recipient, "@").toStdString();
    return "mailto:" + to + "?SUBJECT=" + escaped(subject) + "&BODY=" + escaped(lines);
}

}  // namespace brimvault::ui
