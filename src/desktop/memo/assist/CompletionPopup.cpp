#include "desktop/memo/assist/CompletionPopup.h"

#include "desktop/memo/assist/AssistFonts.h"
#include "desktop/memo/assist/CompletionImages.h"

#include <QAbstractListModel>
#include <QListView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace {

constexpr int Margin = 2; // left of images and texts

/// A corner that sizes its window. It moves the corner itself instead of asking the desktop, which doesn't
/// size windows of this kind.
class TGrip : public QWidget {
public:
    explicit TGrip(QWidget* parent) : QWidget(parent) {
        setCursor(Qt::SizeFDiagCursor);
        setFixedSize(Side, Side);
        setAccessibleName("Size of the list");
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(palette().color(QPalette::PlaceholderText), 1.2));
        for (const double from : {4.0, 8.0})
            painter.drawLine(QPointF(from, Side - 2), QPointF(Side - 2, from));
    }
    void mousePressEvent(QMouseEvent* event) override {
        FFrom = event->globalPosition().toPoint();
        FSize = window()->size();
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        const QPoint by = event->globalPosition().toPoint() - FFrom;
        window()->resize((FSize + QSize(by.x(), by.y())).expandedTo(window()->minimumSize()));
    }

private:
    static constexpr int Side = 14;
    QPoint FFrom;
    QSize FSize;
};

} // namespace

class TCompletionPopup::TModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void Take(const TAutoCompletionListBox& box) {
        const bool same = Box && Box->Entries == box.Entries && Box->ItemHeight() == box.ItemHeight();
        if (!same)
            beginResetModel();
        Box = std::make_unique<TAutoCompletionListBox>(box);
        if (!same)
            endResetModel();
    }
    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() || !Box ? 0 : int(Box->Entries.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? Box->Entries[size_t(index.row())].Text : QVariant();
    }

    std::unique_ptr<TAutoCompletionListBox> Box; // a copy: the control's goes before the window is hidden
};

class TCompletionPopup::TDelegate : public QStyledItemDelegate {
public:
    TDelegate(TCompletionPopup& popup) : QStyledItemDelegate(&popup), FPopup(popup) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (!FColors || !FColors->IsFor(FPopup.palette()))
            FColors = std::make_unique<TMemoColors>(FPopup.palette());
        const TAutoCompletionListBox& box = *FPopup.FModel->Box;
        const TAutoCompletion& settings = box.Settings();
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        if (selected)
            painter->fillRect(option.rect, FColors->Tints.Selection);
        const int side = std::min(16, option.rect.height());
        const QRectF square(option.rect.left() + Margin,
                            option.rect.top() + (option.rect.height() - side) / 2.0, side, side);
        DrawCompletionImage(*painter, box.ImageOf(index.row()), square,
                            selected ? FColors->Tints.SelectedText.lightnessF() > 0.5 : FColors->IsDark());
        for (const TEntryPiece& piece : box.PiecesOf(index.row(), selected, FPopup.FMetrics)) {
            painter->setFont(DesktopFont(settings.Font, piece.Bold));
            const TColor color = piece.Colored ? piece.Color : settings.Font.Color;
            painter->setPen(selected ? FColors->Tints.SelectedText : FColors->Text(color, settings.Color));
            painter->drawText(option.rect.adjusted(Margin + piece.Left, 0, 0, 0),
                              Qt::AlignVCenter | Qt::TextSingleLine, piece.Text);
        }
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& /*index*/) const override {
        return {0, FPopup.FModel->Box->ItemHeight()};
    }

private:
    TCompletionPopup& FPopup;
    mutable std::unique_ptr<TMemoColors> FColors;
};

TCompletionPopup::TCompletionPopup(QWidget& editor, const TTextMetrics& metrics)
    : QFrame(&editor, Qt::ToolTip | Qt::FramelessWindowHint), FMetrics(metrics), FModel(new TModel(this)),
      FView(new QListView(this)), FGrip(new TGrip(this)) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setMinimumSize(60, 40);
    setAccessibleName("Completion");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(FView);
    FView->setModel(FModel);
    FView->setItemDelegate(new TDelegate(*this));
    FView->setFocusPolicy(Qt::NoFocus);
    FView->setFrameShape(QFrame::NoFrame);
    FView->setUniformItemSizes(/*enable=*/true);
    FView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    FView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    FView->setAccessibleName("Completion");
    FView->addScrollBarWidget(FGrip, Qt::AlignBottom);
    connect(FView, &QListView::clicked, this, [this](const QModelIndex& index) { Clicked(index.row()); });
}

TCompletionPopup::~TCompletionPopup() = default;

void TCompletionPopup::Take(const TAutoCompletionListBox& box) {
    const TMemoColors colors(palette());
    QPalette looks = FView->palette();
    looks.setColor(QPalette::Base, colors.Back(box.Settings().Color));
    FView->setPalette(looks);
    QPalette frame = palette();
    frame.setColor(QPalette::WindowText, colors.Tints.Number);
    frame.setColor(QPalette::Window, colors.Back(box.Settings().Color));
    if (frame != palette())
        setPalette(frame);
    const bool sizes = box.Settings().SizeDropDown;
    FView->setVerticalScrollBarPolicy(sizes ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
    FGrip->setVisible(sizes);
    FModel->Take(box);
    const QModelIndex current = FModel->index(box.ItemIndex);
    FView->setCurrentIndex(current);
    FView->scrollTo(current);
}
