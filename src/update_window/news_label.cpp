#include "update_window/news_label.hpp"

#include <QAccessible>
#include <QAccessibleWidget>

namespace corvana {
namespace {

class News : public QAccessibleWidget {
 public:
  explicit News(NewsLabel* label) : QAccessibleWidget(label, QAccessible::Notification) {}

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Name) return static_cast<const NewsLabel*>(widget())->text();
    return QAccessibleWidget::text(kind);
  }
};

QAccessibleInterface* makeNews(const QString& className, QObject* object) {
  if (className != QLatin1String(NewsLabel::staticMetaObject.className())) return nullptr;
  return new News(static_cast<NewsLabel*>(object));
}

}  // namespace

NewsLabel::NewsLabel(QWidget* parent) : QLabel(parent) {
  QAccessible::installFactory(makeNews);  // once, however often it is called
}

void NewsLabel::announce() {
  // What screen readers wait for is that a notification comes into sight.
  QAccessibleEvent event(this, QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&event);
}

}  // namespace corvana
