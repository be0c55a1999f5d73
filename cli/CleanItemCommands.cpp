// clean-item: the recent-item lists, the recycle bin and the recent documents, cleaned one chooser
// item at a time or all of them.

#include "cleaning/CleanIT.h"
#include "cli/Commands.h"
#include "cli/Context.h"
#include "cli/ProgressBar.h"


namespace cli {
namespace {

class BarView final : public cleaning::CleanView {
public:
    void recycleProgress(std::size_t done, std::size_t items) override {
        m_bar.update(static_cast<double>(done), static_cast<double>(items), ProgressBar::Unit::Items, "trash");
    }

private:
    ProgressBar m_bar;
};

std::string itemList() {
    std::string list;
    for (const std::string& item : cleaning::ChooserItems)
        list += "\n  " + item;
    return list;
}

} // namespace

void addCleanItemCommands(CLI::App& app, Context& ctx) {
    auto* clean = app.add_subcommand("clean-item", "Clean one recent-item list by its exact chooser text; "
                                                   "\"Do Em All\" runs them all");
    auto item = std::make_shared<std::string>();
    auto yes = std::make_shared<bool>(false);
    clean->add_option("ITEM", *item, "The chooser item, exactly as listed:" + itemList())->required();
    clean->add_flag("-y,--yes", *yes, "Empty the recycle bin without asking");
    ctx.summary.changes(clean);
    clean->callback([&ctx, item, yes] {
        if (!cleaning::CleanIT::IsChooserItem(*item))
            throw UsageError(cleaning::NoChoiceMessage);
        ctx.prompts.setAssumeYes(*yes);
        BarView view;
        cleaning::CleanIT(ctx.platform, ctx.prompts, &ctx.problems, &view).CleanMruItem(*item);
    });
}

} // namespace cli
