// Stands in for the system's browser: QDesktopServices hands it the links of a scheme.
#pragma once
#include <QList>
#include <QObject>
#include <QUrl>

namespace vexil::test {

class UrlRecorder : public QObject {
    Q_OBJECT
  public:
    QList<QUrl> opened;
  public slots:
    void open(const QUrl& url) { opened << url; }
};

} // namespace vexil::test
