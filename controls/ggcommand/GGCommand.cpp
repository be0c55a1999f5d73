#include "controls/ggcommand/GGCommand.h"

#include "controls/ggcommand/FontConversion.h"
#include "controls/ggcommand/ToolTipWindow.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>

#include <limits>

namespace ggcommand {
namespace {

int buttonCode(Qt::MouseButtons buttons) {
    return (buttons & Qt::LeftButton ? 1 : 0) | (buttons & Qt::RightButton ? 2 : 0) |
           (buttons & Qt::MiddleButton ? 4 : 0);
}

int shiftCode(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
           (modifiers & Qt::AltModifier ? 4 : 0);
}

std::int16_t toInt16(int value) {
    return static_cast<std::int16_t>(
        std::clamp(value, int(std::numeric_limits<std::int16_t>::min()), int(std::numeric_limits<std::int16_t>::max())));
}

Qt::CursorShape cursorShape(int pointer) {
    switch (pointer) {
    case 2: return Qt::CrossCursor;
    case 3: return Qt::IBeamCursor;
    case 5: case 15: return Qt::SizeAllCursor;
    case 6: return Qt::SizeBDiagCursor;
    case 7: return Qt::SizeVerCursor;
    case 8: return Qt::SizeFDiagCursor;
    case 9: return Qt::SizeHorCursor;
    case 10: return Qt::UpArrowCursor;
    case 11: return Qt::WaitCursor;
    case 12: return Qt::ForbiddenCursor;
    case 13: return Qt::BusyCursor;
    case 14: return Qt::WhatsThisCursor;
    default: return Qt::ArrowCursor;
    }
}

} // namespace

GGCommand::GGCommand(QWidget* parent) : QWidget(parent), m_colors(nativeSystemColors()) {
    installFontSubstitutes();
    m_props = ButtonProperties::defaults({}, toFontSpec(font()));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    // An unnamed caption follows the object name, which is usually set after construction.
    connect(this, &QObject::objectNameChanged, this, [this] {
        if (!m_hasCaption)
            run(m_machine.refresh(behaviour()));
    });
}

GGCommand::~GGCommand() {
    destroyToolTip();
}

// ---- properties ---------------------------------------------------------------------------------

QString GGCommand::caption() const {
    return m_hasCaption ? QString::fromStdString(m_props.caption) : objectName();
}

void GGCommand::setCaption(const QString& caption) {
    m_props.caption = caption.toStdString();
    m_hasCaption = true;
    changed("Caption");
}

void GGCommand::setCaptionAlignment(int alignment) {
    assign(&ButtonProperties::captionAlignment, alignment, "CaptionAlignment");
}

void GGCommand::setCaptionXOffset(int offset) {
    assign(&ButtonProperties::captionXOffset, toInt16(offset), "CaptionXOffset");
}

void GGCommand::setCaptionYOffset(int offset) {
    assign(&ButtonProperties::captionYOffset, toInt16(offset), "CaptionYOffset");
}

void GGCommand::setUseHoverProperties(bool use) {
    assign(&ButtonProperties::useHoverProperties, use, "UseHoverProperties");
}

void GGCommand::setFontBoldOnHover(bool bold) {
    assign(&ButtonProperties::fontBoldOnHover, bold, "FontBoldOnHover");
}

void GGCommand::setFontColorOnHover(uint color) {
    assign(&ButtonProperties::fontColorOnHover, color, "FontColorOnHover");
}

void GGCommand::setBackColor(uint color) {
    assign(&ButtonProperties::backColor, color, "BackColor");
}

void GGCommand::setForeColor(uint color) {
    assign(&ButtonProperties::foreColor, color, "ForeColor");
}

void GGCommand::setPicture(const QString& path) {
    m_props.picture = path.toStdString();
    m_picture = path.isEmpty() ? QPixmap() : QPixmap(path);
    changed("Picture");
}

void GGCommand::setPictureAlignment(int alignment) {
    assign(&ButtonProperties::pictureAlignment, alignment, "PictureAlignment");
}

void GGCommand::setPictureXOffset(int offset) {
    assign(&ButtonProperties::pictureXOffset, toInt16(offset), "PictureXOffset");
}

void GGCommand::setPictureYOffset(int offset) {
    assign(&ButtonProperties::pictureYOffset, toInt16(offset), "PictureYOffset");
}

void GGCommand::setAlwaysShowBorder(bool show) {
    assign(&ButtonProperties::alwaysShowBorder, show, "AlwaysShowBorder");
}

void GGCommand::setBorder3DStyle(int style) {
    m_props.border3DStyle = style;
    applyEdge();
    changed("Border3DStyle", false);
}

void GGCommand::setGradientOrientation(int orientation) {
    assign(&ButtonProperties::gradientOrientation, orientation, "GradientOrientation");
}

void GGCommand::setUseGradientFill(bool use) {
    assign(&ButtonProperties::useGradientFill, use, "UseGradientFill");
}

void GGCommand::setGradientFromColor(uint color) {
    assign(&ButtonProperties::gradientFromColor, color, "GradientFromColor");
}

void GGCommand::setGradientToColor(uint color) {
    assign(&ButtonProperties::gradientToColor, color, "GradientToColor");
}

void GGCommand::setGradientInverseOnPress(bool inverse) {
    assign(&ButtonProperties::gradientInverseOnPress, inverse, "GradientInverseOnPress", false);
}

void GGCommand::setMousePointer(int pointer) {
    m_props.mousePointer = toInt16(pointer);
    applyCursor();
    changed("MousePointer", false);
}

void GGCommand::applyCursor() {
    if (m_props.mousePointer == 0)
        unsetCursor();
    else
        setCursor(cursorShape(m_props.mousePointer));
}

void GGCommand::setButtonEnabled(bool enabled) {
    setEnabled(enabled);
    changed("Enabled", false);
}

void GGCommand::setToolTipText(const QString& text) {
    m_props.toolTip = text.toStdString();
    if (m_toolTip)
        m_toolTip->setText(text);
    changed("ToolTip", false);
}

void GGCommand::setToolTipTitle(const QString& title) {
    assign(&ButtonProperties::toolTipTitle, title.toStdString(), "ToolTipTitle", false);
}

void GGCommand::setToolTipIcon(int icon) {
    assign(&ButtonProperties::toolTipIcon, icon, "ToolTipIcon", false);
}

void GGCommand::setToolTipStyle(int style) {
    assign(&ButtonProperties::toolTipStyle, style, "ToolTipStyle", false);
}

void GGCommand::setToolTipBackColor(uint color) {
    assign(&ButtonProperties::toolTipBackColor, color, "ToolTipBackColor", false);
}

void GGCommand::setToolTipForeColor(uint color) {
    assign(&ButtonProperties::toolTipForeColor, color, "ToolTipForeColor", false);
}

void GGCommand::setToolTipCentered(bool centered) {
    assign(&ButtonProperties::toolTipCentered, centered, "ToolTipCentered", false);
}

void GGCommand::setDontReleaseCapture(bool keep) {
    m_behaviour.dontReleaseCapture = keep;
}

void GGCommand::setValue(bool value) {
    m_value = value;
    run(m_machine.setValue(value));
}

ButtonProperties GGCommand::properties() const {
    ButtonProperties properties = m_props;
    properties.caption = caption().toStdString();
    properties.font = toFontSpec(font());
    properties.enabled = isEnabled();
    return properties;
}

void GGCommand::setProperties(const ButtonProperties& properties) {
    m_props = properties;
    m_hasCaption = true;
    m_picture = properties.picture.empty() ? QPixmap() : QPixmap(QString::fromStdString(properties.picture));
    setFont(toQFont(properties.font));
    setEnabled(properties.enabled);
    applyCursor();
    applyEdge();
    run(m_machine.refresh(behaviour()));
}

ButtonProperties GGCommand::defaultProperties() const {
    const QFont holderFont = parentWidget() ? parentWidget()->font() : QApplication::font();
    return ButtonProperties::defaults(objectName().toStdString(), toFontSpec(holderFont));
}

template <class Field>
void GGCommand::assign(Field ButtonProperties::*field, std::type_identity_t<Field> value, const char* key, bool repaint) {
    m_props.*field = value;
    changed(key, repaint);
}

void GGCommand::changed(const char* key, bool repaint) {
    if (repaint)
        run(m_machine.refresh(behaviour()));
    emit propertyChanged(QString::fromLatin1(key));
}

BehaviourOptions GGCommand::behaviour() const {
    BehaviourOptions options = m_behaviour;
    options.useHoverProperties = m_props.useHoverProperties;
    options.useGradientFill = m_props.useGradientFill;
    options.gradientInverseOnPress = m_props.gradientInverseOnPress;
    options.hasToolTip = !m_props.toolTip.empty();
    options.alwaysShowBorder = m_props.alwaysShowBorder;
    return options;
}

void GGCommand::applyEdge() {
    const auto edge = windowEdge(m_props.border3DStyle);
    if (!edge)
        return;
    m_edge = *edge;
    const int width = m_edge.width();
    setContentsMargins(width, width, width, width);
    // The face's size changes with the edge; resizeEvent is not sent for that, so rebuild here.
    newFace();
    run(m_machine.resized(behaviour()));
}

// ---- painting -----------------------------------------------------------------------------------

void GGCommand::run(const std::vector<Step>& steps) {
    // An event handler may close and delete the window holding the button (a Click that ends
    // the program does); what is left of the steps is then dropped.
    const QPointer<GGCommand> alive(this);
    for (const Step& step : steps) {
        if (!alive)
            return;
        switch (step.kind) {
        case Step::Click: emit Click(); break;
        case Step::DblClick: emit DblClick(); break;
        case Step::MouseEnter: emit MouseEnter(); break;
        case Step::MouseExit: emit MouseExit(); break;
        case Step::MouseDown: emit MouseDown(step.args.button, step.args.shift, step.args.x, step.args.y); break;
        case Step::MouseMove: emit MouseMove(step.args.button, step.args.shift, step.args.x, step.args.y); break;
        case Step::MouseUp: emit MouseUp(step.args.button, step.args.shift, step.args.x, step.args.y); break;
        case Step::CreateToolTip: createToolTip(); break;
        case Step::DestroyToolTip: destroyToolTip(); break;
        case Step::PaintFace:
            paintFace(m_face, m_props, caption(), font(), m_picture, step.inverse, step.look, m_colors, m_layout);
            update();
            break;
        case Step::DrawFrame:
            paintFrame(m_face, step.frameState, m_props, m_colors);
            update();
            break;
        }
    }
}

void GGCommand::newFace() {
    // Sharp on scaled screens: the face has the screen's pixels, drawn in the button's units.
    const qreal scale = devicePixelRatioF();
    m_face = QImage(contentsRect().size() * scale, QImage::Format_RGB32);
    m_face.setDevicePixelRatio(scale);
}

void GGCommand::paintEvent(QPaintEvent*) {
    // The face is retained: uncovering the button only copies it back.
    QPainter painter(this);
    paintWindowEdge(painter, rect(), m_edge, m_colors);
    painter.drawImage(contentsRect().topLeft(), m_face);
}

void GGCommand::resizeEvent(QResizeEvent*) {
    newFace();
    run(m_machine.resized(behaviour()));
}

void GGCommand::changeEvent(QEvent* event) {
    // A new font (set here or passed down from the holder) changes the caption's size and place.
    if (event->type() == QEvent::FontChange)
        run(m_machine.refresh(behaviour()));
    QWidget::changeEvent(event);
}

// ---- pointer, focus, keys -----------------------------------------------------------------------

MouseArgs GGCommand::mouseArgs(const QMouseEvent* event, int buttons) const {
    const QPointF at = event->position() - QPointF(contentsRect().topLeft());
    return {buttons, shiftCode(event->modifiers()), static_cast<float>(at.x()), static_cast<float>(at.y())};
}

bool GGCommand::buttonUnderPointer(const QPoint& local) const {
    const QWidget* top = window();
    if (top == this)
        return rect().contains(local);
    return top->childAt(mapTo(top, local)) == this;
}

void GGCommand::mouseMoveEvent(QMouseEvent* event) {
    const MouseArgs args = mouseArgs(event, buttonCode(event->buttons()));
    const bool inside = ButtonStateMachine::isInside(args.x, args.y, contentsRect().width(), contentsRect().height(),
                                                     buttonUnderPointer(event->position().toPoint()));
    // Without the capture, moves outside the button do not concern it (Qt still sends them while
    // a mouse button is held).
    if (!inside && !m_machine.captured())
        return;
    run(m_machine.move(args, inside, behaviour()));
}

void GGCommand::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    // Holding the capture, the button would see the pointer's next move outside; Qt reports
    // the leaving instead, so treat it as that move.
    // A button being disabled also gets a leave; its face must not change for that.
    if (!m_machine.captured() || !isEnabled() || QApplication::mouseButtons() != Qt::NoButton)
        return;
    pointerGone();
}

bool GGCommand::event(QEvent* event) {
    // A message box (or any modal window) takes the pointer: the blocked window hears of no move
    // or leave any more, so the button would keep its hover look until the pointer came back.
    if (event->type() == QEvent::WindowBlocked && m_machine.captured() && isEnabled())
        pointerGone();
    return QWidget::event(event);
}

void GGCommand::pointerGone() {
    const QPointF at = QPointF(mapFromGlobal(QCursor::pos())) - QPointF(contentsRect().topLeft());
    const MouseArgs args{buttonCode(QApplication::mouseButtons()), shiftCode(QApplication::keyboardModifiers()),
                         static_cast<float>(at.x()), static_cast<float>(at.y())};
    run(m_machine.move(args, false, behaviour()));
}

void GGCommand::mousePressEvent(QMouseEvent* event) {
    if (m_toolTip)
        m_toolTip->dismiss();
    run(m_machine.press(mouseArgs(event, buttonCode(event->button())), behaviour()));
}

void GGCommand::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<GGCommand> alive(this);
    const bool hovered = m_machine.hovering();
    run(m_machine.release(mouseArgs(event, buttonCode(event->button())), behaviour()));
    // The Click may have opened a message box that took the pointer away while the release's own
    // repaint, made for a pointer still over the button, was waiting: paint the face as it is now.
    if (alive && hovered && !m_machine.hovering())
        run(m_machine.refresh(behaviour()));
}

void GGCommand::mouseDoubleClickEvent(QMouseEvent* event) {
    // Only the left button double-clicks; for the others the second press is a press.
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    run(m_machine.doubleClick());
}

void GGCommand::focusInEvent(QFocusEvent* event) {
    // Focus that comes with a press needs no flash: the press paints its own frame.
    if (event->reason() == Qt::MouseFocusReason)
        m_machine.armFocusSkip();
    run(m_machine.focusIn());
}

void GGCommand::focusOutEvent(QFocusEvent*) {
    // Qt moves the focus away from a button being disabled; that must not change its face.
    if (!isEnabled())
        return;
    run(m_machine.focusOut());
}

void GGCommand::keyPressEvent(QKeyEvent* event) {
    // Deliberately inert: Space and Enter do not click; the windows act on mouse clicks only.
    event->ignore();
}

// ---- tooltip ------------------------------------------------------------------------------------

void GGCommand::createToolTip() {
    destroyToolTip();
    ToolTipLook look;
    look.text = toolTipText();
    look.title = toolTipTitle();
    look.icon = m_props.toolTipIcon;
    look.balloon = m_props.toolTipStyle == ToolTipBalloon;
    look.centered = m_props.toolTipCentered;
    look.foreground = toQColor(m_props.toolTipForeColor, m_colors);
    look.background = toQColor(m_props.toolTipBackColor, m_colors);
    m_toolTip = new ToolTipWindow(this, look);
    m_toolTip->arm();
}

void GGCommand::destroyToolTip() {
    delete m_toolTip.data();
    m_toolTip = nullptr;
}

} // namespace ggcommand
