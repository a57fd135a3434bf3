// Drags as another program would make them, sent to a view.
#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <filesystem>
#include <vector>

#include "app/qt_values.hpp"

namespace corvana::test {

/// Whether the view takes the drag.
inline bool enter(QWidget& view, const QMimeData& data,
                  Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction) {
  QDragEnterEvent event(view.rect().center(), actions, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&view, &event);
  EXPECT_TRUE(!event.isAccepted() || event.dropAction() == Qt::CopyAction);
  return event.isAccepted();
}

/// Whether the view takes the movement of a drag and the drop after it.
inline bool drop(QWidget& view, const QMimeData& data) {
  const QPoint end = view.rect().center();
  const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
  QDragMoveEvent move(end, actions, &data, Qt::LeftButton, Qt::NoModifier);
  QDropEvent drop(end, actions, &data, Qt::LeftButton, Qt::NoModifier);
  for (QDropEvent* event : {static_cast<QDropEvent*>(&move), &drop}) {
    event->setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&view, event);
    EXPECT_TRUE(!event->isAccepted() || event->dropAction() == Qt::CopyAction);
  }
  return move.isAccepted() && drop.isAccepted();
}

inline void dragAndDrop(QWidget& view, const std::vector<std::filesystem::path>& paths) {
  QMimeData data;
  QList<QUrl> urls;
  for (const std::filesystem::path& path : paths)
    urls << QUrl(urlTextOfPath(path));
  data.setUrls(urls);
  EXPECT_TRUE(enter(view, data));
  EXPECT_TRUE(drop(view, data));
}

}  // namespace corvana::test
