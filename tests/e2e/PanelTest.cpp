// SPDX-License-Identifier: MIT
#include "e2e/StageFixture.h"

#include <xcb/shape.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

namespace quenthisar::e2e {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

/// Looks at the program's panel as any other client can.
class PanelWatch {
public:
    explicit PanelWatch(const demo::XClient& client)
        : x(client), c(client.get()), opacity(client.atom("_NET_WM_WINDOW_OPACITY")) {}

    /// Windows that no window manager manages, on screen; the desks' are not among them.
    std::vector<xcb_window_t> panels() const {
        const Owned<xcb_query_tree_reply_t> tree{
            xcb_query_tree_reply(c, xcb_query_tree(c, x.root()), nullptr)};
        std::vector<xcb_window_t> found;
        const auto* children = tree ? xcb_query_tree_children(tree.get()) : nullptr;
        for (int i = 0; children && i < tree->children_len; ++i) {
            const Owned<xcb_get_window_attributes_reply_t> window{xcb_get_window_attributes_reply(
                c, xcb_get_window_attributes(c, children[i]), nullptr)};
            const auto isOfPanel = window && window->override_redirect &&
                                   window->map_state == XCB_MAP_STATE_VIEWABLE &&
                                   hasOpacity(children[i]);
            if (isOfPanel) found.push_back(children[i]);
        }
        return found;
    }

    QRect frame(xcb_window_t window) const {
        const Owned<xcb_get_geometry_reply_t> reply{
            xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr)};
        return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
    }

    bool takesInput(xcb_window_t window) const {
        const Owned<xcb_shape_get_rectangles_reply_t> reply{xcb_shape_get_rectangles_reply(
            c, xcb_shape_get_rectangles(c, window, XCB_SHAPE_SK_INPUT), nullptr)};
        EXPECT_TRUE(reply);
        return !reply || xcb_shape_get_rectangles_rectangles_length(reply.get()) > 0;
    }

    struct Fades {
        std::set<std::uint32_t> in, out; // opacities
    };
    /// What a window goes through on the way to full opacity and from there, until `done` holds.
    Fades fades(xcb_window_t window, const std::function<bool()>& done) const {
        constexpr std::uint32_t opaque = 0xFFFFFFFF;
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &mask);
        Fades seen;
        bool wasOpaque = false;
        waitUntil(
            [&] {
                while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(c)}) {
                    if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
                    const auto value = opacityOf(window);
                    if (!value) continue;
                    (wasOpaque ? seen.out : seen.in).insert(*value);
                    wasOpaque = wasOpaque || *value == opaque;
                }
                return done();
            },
            soon);
        return seen;
    }

private:
    bool hasOpacity(xcb_window_t window) const { return opacityOf(window).has_value(); }

    std::optional<std::uint32_t> opacityOf(xcb_window_t window) const {
        const Owned<xcb_get_property_reply_t> reply{xcb_get_property_reply(
            c, xcb_get_property(c, false, window, opacity, XCB_ATOM_CARDINAL, 0, 1), nullptr)};
        if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t))
            return std::nullopt;
        return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    }

    const demo::XClient& x;
    xcb_connection_t* c;
    xcb_atom_t opacity;
};

} // namespace

class PanelOfATakeover : public StageFixture {
protected:
    /// Returns and takes over once more: that of the start may be gone again.
    bool showAgain(const PanelWatch& watch) {
        stage->pressReturnChord();
        return waitUntil([&] { return watch.panels().empty(); }, soon) && stage->cross(soon) &&
               waitUntil([&] { return watch.panels().size() == 1; }, soon);
    }
};

TEST_F(PanelOfATakeover, ShowsInsideTheCrossedEdgeAndIsInNobodysWay) {
    const PanelWatch watch{stage->host};
    ASSERT_TRUE(showAgain(watch));
    const auto panel = watch.panels().front();
    const auto frame = watch.frame(panel);
    constexpr int width = 1280, height = 800, margin = 12; // of the stage's displays
    EXPECT_EQ(frame.left(),
              std::min(width - 120 - frame.width() / 2, width - frame.width() - margin));
    EXPECT_NEAR(frame.center().y(), height / 2, 1);
    EXPECT_TRUE(waitUntil([&] { return !watch.takesInput(panel); }, atOnce));
    // The dot, and the ground beside it.
    const auto picture = stage->host.picture();
    const auto middle = frame.center().y();
    EXPECT_GT(picture.pixelColor(frame.left() + 8 + 24 + 7, middle).hsvSaturation(), 100);
    EXPECT_LT(picture.pixelColor(frame.left() + 8 + 8, middle).hsvSaturation(), 20);

    // The desk keeps the focus, so what is typed after the return arrives there.
    stage->pressReturnChord();
    EXPECT_TRUE(stage->hostKeyboardWorks(soon));
    EXPECT_TRUE(waitUntil([&] { return watch.panels().empty(); }, soon));
}

TEST_F(PanelOfATakeover, FadesInManySteps) {
    const PanelWatch watch{stage->host};
    ASSERT_TRUE(showAgain(watch));
    const auto panel = watch.panels().front();
    // It goes by itself.
    const auto seen = watch.fades(panel, [&] { return watch.panels().empty(); });
    // A dozen each on a quiet machine; a jump would be one.
    EXPECT_GE(seen.in.size(), 4U);
    EXPECT_GE(seen.out.size(), 4U);
}

} // namespace quenthisar::e2e
