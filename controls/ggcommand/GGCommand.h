#pragma once
// The gradient command button every command of the main window and the index.dat window is made
// of. It paints its own face (gradient, picture, caption on a three-by-three grid, a thin frame
// that shows hover and press), tracks the pointer itself and raises its own seven events, in this
// numbering: 1 Click, 2 DblClick, 3 MouseEnter, 4 MouseExit, 5 MouseDown, 6 MouseMove, 7 MouseUp.
// It shows its own tooltip while the pointer is over it. Its look is set per instance at design
// time and loaded from the window's design store (see Design.h); the Qt properties carry the
// design's names.
//
// Deliberate behaviour the windows rely on: keys never click the button (only the mouse does); a
// disabled button looks exactly like an enabled one; a press that leaves the button before the
// release raises no Click.

#include "controls/ggcommand/ButtonProperties.h"
#include "controls/ggcommand/ButtonStateMachine.h"
#include "controls/ggcommand/FacePainter.h"
#include "controls/ggcommand/ToolTipWindow.h"

#include <QImage>
#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include <type_traits>

namespace ggcommand {

class GGCommand : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ caption WRITE setCaption)
    Q_PROPERTY(int CaptionAlignment READ captionAlignment WRITE setCaptionAlignment)
    Q_PROPERTY(int CaptionXOffset READ captionXOffset WRITE setCaptionXOffset)
    Q_PROPERTY(int CaptionYOffset READ captionYOffset WRITE setCaptionYOffset)
    Q_PROPERTY(bool UseHoverProperties READ useHoverProperties WRITE setUseHoverProperties)
    Q_PROPERTY(bool FontBoldOnHover READ fontBoldOnHover WRITE setFontBoldOnHover)
    Q_PROPERTY(uint FontColorOnHover READ fontColorOnHover WRITE setFontColorOnHover)
    Q_PROPERTY(uint BackColor READ backColor WRITE setBackColor)
    Q_PROPERTY(uint ForeColor READ foreColor WRITE setForeColor)
    Q_PROPERTY(QFont Font READ font WRITE setFont)
    Q_PROPERTY(QString Picture READ picture WRITE setPicture)
    Q_PROPERTY(int PictureAlignment READ pictureAlignment WRITE setPictureAlignment)
    Q_PROPERTY(int PictureXOffset READ pictureXOffset WRITE setPictureXOffset)
    Q_PROPERTY(int PictureYOffset READ pictureYOffset WRITE setPictureYOffset)
    Q_PROPERTY(bool AlwaysShowBorder READ alwaysShowBorder WRITE setAlwaysShowBorder)
    Q_PROPERTY(int Border3DStyle READ border3DStyle WRITE setBorder3DStyle)
    Q_PROPERTY(int GradientOrientation READ gradientOrientation WRITE setGradientOrientation)
    Q_PROPERTY(bool UseGradientFill READ useGradientFill WRITE setUseGradientFill)
    Q_PROPERTY(uint GradientFromColor READ gradientFromColor WRITE setGradientFromColor)
    Q_PROPERTY(uint GradientToColor READ gradientToColor WRITE setGradientToColor)
    Q_PROPERTY(bool GradientInverseOnPress READ gradientInverseOnPress WRITE setGradientInverseOnPress)
    Q_PROPERTY(int MousePointer READ mousePointer WRITE setMousePointer)
    Q_PROPERTY(bool Enabled READ isEnabled WRITE setButtonEnabled)
    Q_PROPERTY(QString ToolTip READ toolTipText WRITE setToolTipText)
    Q_PROPERTY(QString ToolTipTitle READ toolTipTitle WRITE setToolTipTitle)
    Q_PROPERTY(int ToolTipIcon READ toolTipIcon WRITE setToolTipIcon)
    Q_PROPERTY(int ToolTipStyle READ toolTipStyle WRITE setToolTipStyle)
    Q_PROPERTY(uint ToolTipBackColor READ toolTipBackColor WRITE setToolTipBackColor)
    Q_PROPERTY(uint ToolTipForeColor READ toolTipForeColor WRITE setToolTipForeColor)
    Q_PROPERTY(bool ToolTipCentered READ toolTipCentered WRITE setToolTipCentered)
    Q_PROPERTY(bool DontReleaseCapture READ dontReleaseCapture WRITE setDontReleaseCapture)
    Q_PROPERTY(bool Value READ value WRITE setValue)
    Q_PROPERTY(qulonglong hWnd READ hWnd)

public:
    explicit GGCommand(QWidget* parent = nullptr);
    ~GGCommand() override;

    /// The caption; until one is set, the button's object name.
    QString caption() const;
    void setCaption(const QString& caption);
    int captionAlignment() const { return m_props.captionAlignment; }
    /// 0-8 on the grid (0 top left, 4 centre, 8 bottom right); other values keep the last place.
    void setCaptionAlignment(int alignment);
    int captionXOffset() const { return m_props.captionXOffset; }
    void setCaptionXOffset(int offset);
    int captionYOffset() const { return m_props.captionYOffset; }
    void setCaptionYOffset(int offset);
    bool useHoverProperties() const { return m_props.useHoverProperties; }
    void setUseHoverProperties(bool use);
    bool fontBoldOnHover() const { return m_props.fontBoldOnHover; }
    void setFontBoldOnHover(bool bold);
    /// Colours are 0x00BBGGRR words or 0x80000000 + a system colour index.
    uint fontColorOnHover() const { return m_props.fontColorOnHover; }
    void setFontColorOnHover(uint color);
    uint backColor() const { return m_props.backColor; }
    void setBackColor(uint color);
    uint foreColor() const { return m_props.foreColor; }
    void setForeColor(uint color);
    /// Path of the picture drawn on the face ("" for none).
    QString picture() const { return QString::fromStdString(m_props.picture); }
    void setPicture(const QString& path);
    int pictureAlignment() const { return m_props.pictureAlignment; }
    void setPictureAlignment(int alignment);
    int pictureXOffset() const { return m_props.pictureXOffset; }
    void setPictureXOffset(int offset);
    int pictureYOffset() const { return m_props.pictureYOffset; }
    void setPictureYOffset(int offset);
    bool alwaysShowBorder() const { return m_props.alwaysShowBorder; }
    void setAlwaysShowBorder(bool show);
    int border3DStyle() const { return m_props.border3DStyle; }
    /// 0 none, 1 sunken client edge, 2 raised modal frame, 3 thin static edge, 4 client edge and
    /// modal frame; other values keep the edge as it is.
    void setBorder3DStyle(int style);
    int gradientOrientation() const { return m_props.gradientOrientation; }
    /// 0 top to bottom, 1 left to right; any other value paints no gradient.
    void setGradientOrientation(int orientation);
    bool useGradientFill() const { return m_props.useGradientFill; }
    void setUseGradientFill(bool use);
    uint gradientFromColor() const { return m_props.gradientFromColor; }
    void setGradientFromColor(uint color);
    uint gradientToColor() const { return m_props.gradientToColor; }
    void setGradientToColor(uint color);
    bool gradientInverseOnPress() const { return m_props.gradientInverseOnPress; }
    void setGradientInverseOnPress(bool inverse);
    int mousePointer() const { return m_props.mousePointer; }
    /// The pointer shape over the button, by the classic pointer numbers (0 default, 1 arrow,
    /// 2 cross, 3 I-beam, 11 hourglass, 99 custom ...).
    void setMousePointer(int pointer);
    /// Enables or disables input only: the face stays exactly as it is.
    void setButtonEnabled(bool enabled);
    QString toolTipText() const { return QString::fromStdString(m_props.toolTip); }
    /// The tip text; while a tip exists its text changes in place. "" means no tip on entry.
    void setToolTipText(const QString& text);
    QString toolTipTitle() const { return QString::fromStdString(m_props.toolTipTitle); }
    void setToolTipTitle(const QString& title);
    int toolTipIcon() const { return m_props.toolTipIcon; }
    void setToolTipIcon(int icon);
    int toolTipStyle() const { return m_props.toolTipStyle; }
    void setToolTipStyle(int style);
    uint toolTipBackColor() const { return m_props.toolTipBackColor; }
    void setToolTipBackColor(uint color);
    uint toolTipForeColor() const { return m_props.toolTipForeColor; }
    void setToolTipForeColor(uint color);
    bool toolTipCentered() const { return m_props.toolTipCentered; }
    void setToolTipCentered(bool centered);
    bool dontReleaseCapture() const { return m_behaviour.dontReleaseCapture; }
    /// When true, the pointer leaving the button keeps the hover state (run time only).
    void setDontReleaseCapture(bool keep);
    /// The last value set (run time only).
    bool value() const { return m_value; }
    /// True raises Click, as if the user had clicked; false raises nothing.
    void setValue(bool value);
    /// The native window the button lives in (0 when there is none yet).
    qulonglong hWnd() const { return static_cast<qulonglong>(effectiveWinId()); }

    /// All design properties at once (font and enabled state from the widget itself).
    ButtonProperties properties() const;
    /// Takes a whole design, as loading it from the design store does.
    void setProperties(const ButtonProperties& properties);
    /// What a new button in the same place starts with: its name as caption, its holder's font.
    ButtonProperties defaultProperties() const;

    /// The tip window while the pointer is over the button, otherwise null.
    ToolTipWindow* toolTipWindow() const { return m_toolTip; }
    /// Where the caption was last drawn, in face units (may be negative).
    Point captionPosition() const { return m_layout.caption; }
    /// The face as last painted.
    const QImage& face() const { return m_face; }

signals:
    void Click();
    void DblClick();
    void MouseEnter();
    void MouseExit();
    void MouseDown(int button, int shift, float x, float y);
    void MouseMove(int button, int shift, float x, float y);
    void MouseUp(int button, int shift, float x, float y);
    /// A design property was set (by its design key), so the holding window's design changed.
    void propertyChanged(const QString& key);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    /// The pointer left the button, as a move outside it; for a leave the button hears of instead.
    void pointerGone();
    MouseArgs mouseArgs(const QMouseEvent* event, int buttons) const;
    bool buttonUnderPointer(const QPoint& local) const;
    void run(const std::vector<Step>& steps);
    /// Stores a design property, repaints when it shows on the face, and reports it changed.
    template <class Field>
    void assign(Field ButtonProperties::*field, std::type_identity_t<Field> value, const char* key, bool repaint = true);
    void changed(const char* key, bool repaint = true);
    void applyEdge();
    void newFace();
    void applyCursor();
    void createToolTip();
    void destroyToolTip();
    BehaviourOptions behaviour() const;

    ButtonProperties m_props;
    bool m_hasCaption = false;
    bool m_value = false;
    BehaviourOptions m_behaviour;
    ButtonStateMachine m_machine;
    SystemColors m_colors;
    WindowEdge m_edge;
    QImage m_face;
    QPixmap m_picture;
    FaceLayout m_layout;
    QPointer<ToolTipWindow> m_toolTip;
};

} // namespace ggcommand
