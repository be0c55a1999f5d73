#pragma once
// The progress window shown while the recycle bin is emptied, in place of the shell's own: a
// progress dialog that appears with the first removed item and lets pending events run after
// each one, so the program stays drawn.

#include "cleaning/CleanIT.h"

class QProgressDialog;
class QWidget;

namespace app {

class RecycleProgress final : public cleaning::CleanView {
public:
    explicit RecycleProgress(QWidget* owner) : m_owner(owner) {}
    ~RecycleProgress() override;
    RecycleProgress(const RecycleProgress&) = delete;
    RecycleProgress& operator=(const RecycleProgress&) = delete;

    void recycleProgress(std::size_t done, std::size_t items) override;

private:
    QWidget* m_owner;
    QProgressDialog* m_dialog = nullptr;
};

} // namespace app
