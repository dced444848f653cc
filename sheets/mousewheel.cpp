#include "sheets/mousewheel.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWheelEvent>

#include <cmath>

namespace sheets {

WheelValues wheelValues(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, int angleDeltaY,
                        QPointF globalPosition) {
  WheelValues values;
  if (buttons & Qt::LeftButton) values.keys |= 1;
  if (buttons & Qt::RightButton) values.keys |= 2;
  if (modifiers & Qt::ShiftModifier) values.keys |= 4;
  if (modifiers & Qt::ControlModifier) values.keys |= 8;
  if (buttons & Qt::MiddleButton) values.keys |= 16;
  if (buttons & Qt::XButton1) values.keys |= 32;
  if (buttons & Qt::XButton2) values.keys |= 64;
  values.rotation = angleDeltaY;
  values.x = static_cast<int>(std::lround(globalPosition.x()));
  values.y = static_cast<int>(std::lround(globalPosition.y()));
  return values;
}

MouseWheelModule::MouseWheelModule(QObject* parent) : QObject(parent) {
  if (QCoreApplication* application = QCoreApplication::instance())
    application->installEventFilter(this);
}

MouseWheelModule::~MouseWheelModule() {
  if (QCoreApplication* application = QCoreApplication::instance())
    application->removeEventFilter(this);
}

void MouseWheelModule::HookMouseWheel(WheelAware* window) { m_window = window; }

void MouseWheelModule::UnhookMouseWheel() { m_window = nullptr; }

void MouseWheelModule::UnhookMouseWheel(WheelAware* window) {
  if (m_window == window) m_window = nullptr;
}

bool MouseWheelModule::eventFilter(QObject* watched, QEvent* event) {
  // A wheel event reaches the top-level window first and is then passed down to the widget
  // under the pointer and up its parents; taking it at the window only serves it once.
  if (event->type() == QEvent::Wheel && watched->isWindowType() && m_window) {
    const auto* wheel = static_cast<const QWheelEvent*>(event);
    const WheelValues v = wheelValues(wheel->buttons(), wheel->modifiers(), wheel->angleDelta().y(),
                                      wheel->globalPosition());
    m_window->MouseWheel(v.keys, v.rotation, v.x, v.y);
  }
  return false;
}

void deliverWheelEvent(WheelAware& window, const MouseWheelModule* module, QWheelEvent* event) {
  if (!module || module->servedWindow() != &window) {
    const WheelValues v = wheelValues(event->buttons(), event->modifiers(), event->angleDelta().y(),
                                      event->globalPosition());
    window.MouseWheel(v.keys, v.rotation, v.x, v.y);
  }
  event->accept();
}

WheelHook::WheelHook(QWidget* widget, WheelAware* window, MouseWheelModule* module)
    : m_window(window),
      m_module(module),
      m_activation(
          widget, [this] { hook(); }, [this] { unhook(); }) {}

WheelHook::~WheelHook() { unhook(); }

void WheelHook::hook() {
  if (m_module) m_module->HookMouseWheel(m_window);
}

void WheelHook::unhook() {
  if (m_module) m_module->UnhookMouseWheel(m_window);
}

}  // namespace sheets
