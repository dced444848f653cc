#pragma once

#include "sheets/subwindowactivation.h"

#include <QObject>
#include <QPointF>

class QWheelEvent;
class QWidget;

namespace sheets {

// A window that reacts to the mouse wheel while it is the one being served.
class WheelAware {
 public:
  virtual ~WheelAware() = default;
  // keys: left button 1, right 2, Shift 4, Ctrl 8, middle 16, first extra button 32, second 64.
  // rotation: 120 per notch, positive away from the user. x, y: the pointer on the screen, in
  // pixels.
  virtual void MouseWheel(int keys, int rotation, int x, int y) = 0;
};

// The four values a wheel-aware window receives for one wheel event.
struct WheelValues {
  int keys = 0;
  int rotation = 0;
  int x = 0;
  int y = 0;
};

// Converts Qt's view of a wheel event into the values of WheelAware::MouseWheel. angleDeltaY
// is QWheelEvent::angleDelta().y(); globalPosition the pointer on the screen.
WheelValues wheelValues(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, int angleDeltaY,
                        QPointF globalPosition);

// Hands every wheel event of the application to the one wheel-aware window being served, then
// lets Qt deliver the event as usual. One instance, owned by the program; windows reach it
// through the pointer they are given. A window hooks itself when it becomes active and
// unhooks when it stops being active.
class MouseWheelModule : public QObject {
  Q_OBJECT

 public:
  // Installs itself as an event filter on the running application.
  explicit MouseWheelModule(QObject* parent = nullptr);
  ~MouseWheelModule() override;

  void HookMouseWheel(WheelAware* window);
  // Forgets the window being served (whichever it is).
  void UnhookMouseWheel();
  // Forgets window only if it is the one being served; for windows that are closing and do
  // not know whether another has hooked itself since.
  void UnhookMouseWheel(WheelAware* window);
  WheelAware* servedWindow() const { return m_window; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  WheelAware* m_window = nullptr;
};

// Hands a wheel event that reached a wheel-aware window to its MouseWheel, unless the
// forwarding already served it (the window is the one hooked), and accepts it.
void deliverWheelEvent(WheelAware& window, const MouseWheelModule* module, QWheelEvent* event);

// Keeps a wheel-aware window hooked to the forwarding while the MDI child holding it is active,
// and unhooks it when it stops being active, closes or goes.
class WheelHook {
 public:
  // module may be null: then nothing is hooked.
  WheelHook(QWidget* widget, WheelAware* window, MouseWheelModule* module);
  ~WheelHook();
  WheelHook(const WheelHook&) = delete;
  WheelHook& operator=(const WheelHook&) = delete;

  void hook();
  void unhook();

 private:
  WheelAware* m_window;
  MouseWheelModule* m_module;
  SubWindowActivation m_activation;
};

}  // namespace sheets
