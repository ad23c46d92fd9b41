#pragma once
// The entry of one page plugin in the host's navigation area: the plugin's icon and caption above its
// tree. Clicking it shows the plugin's page. It paints the selected state and the attention highlight that
// AttentionAnimator drives.

#include <QIcon>
#include <QWidget>

class QLabel;

class PluginHeader : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qreal attentionLevel READ attentionLevel WRITE setAttentionLevel)
public:
    explicit PluginHeader(QWidget* parent = nullptr);

    void setIcon(const QIcon& icon);
    void setCaption(const QString& caption);
    QString caption() const;

    void setSelected(bool selected);
    bool isSelected() const { return m_selected; }

    // 0: no highlight; 1: the full accent colour behind the entry.
    qreal attentionLevel() const { return m_attentionLevel; }
    void setAttentionLevel(qreal level);

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QLabel* m_iconLabel = nullptr;
    QLabel* m_captionLabel = nullptr;
    bool m_selected = false;
    qreal m_attentionLevel = 0.0;
};
