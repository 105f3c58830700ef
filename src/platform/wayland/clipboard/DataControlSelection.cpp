// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/clipboard/DataControlSelection.h"

#include "ext-data-control-v1-client.h"
#include "wlr-data-control-unstable-v1-client.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace tovek {

namespace {

// The two protocols are alike but for their names.
struct Ext
{
    using Manager = ext_data_control_manager_v1;
    using Device = ext_data_control_device_v1;
    using Source = ext_data_control_source_v1;
    using Offer = ext_data_control_offer_v1;
    using DeviceListener = ext_data_control_device_v1_listener;
    using SourceListener = ext_data_control_source_v1_listener;
    static constexpr auto makeDevice = &ext_data_control_manager_v1_get_data_device;
    static constexpr auto makeSource = &ext_data_control_manager_v1_create_data_source;
    static constexpr auto destroyManager = &ext_data_control_manager_v1_destroy;
    static constexpr auto listenToDevice = &ext_data_control_device_v1_add_listener;
    static constexpr auto setSelection = &ext_data_control_device_v1_set_selection;
    static constexpr auto destroyDevice = &ext_data_control_device_v1_destroy;
    static constexpr auto listenToSource = &ext_data_control_source_v1_add_listener;
    static constexpr auto offer = &ext_data_control_source_v1_offer;
    static constexpr auto destroySource = &ext_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = &ext_data_control_offer_v1_destroy;
};

struct Wlr
{
    using Manager = zwlr_data_control_manager_v1;
    using Device = zwlr_data_control_device_v1;
    using Source = zwlr_data_control_source_v1;
    using Offer = zwlr_data_control_offer_v1;
    using DeviceListener = zwlr_data_control_device_v1_listener;
    using SourceListener = zwlr_data_control_source_v1_listener;
    static constexpr auto makeDevice = &zwlr_data_control_manager_v1_get_data_device;
    static constexpr auto makeSource = &zwlr_data_control_manager_v1_create_data_source;
    static constexpr auto destroyManager = &zwlr_data_control_manager_v1_destroy;
    static constexpr auto listenToDevice = &zwlr_data_control_device_v1_add_listener;
    static constexpr auto setSelection = &zwlr_data_control_device_v1_set_selection;
    static constexpr auto destroyDevice = &zwlr_data_control_device_v1_destroy;
    static constexpr auto listenToSource = &zwlr_data_control_source_v1_add_listener;
    static constexpr auto offer = &zwlr_data_control_source_v1_offer;
    static constexpr auto destroySource = &zwlr_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = &zwlr_data_control_offer_v1_destroy;
};

template <typename Protocol>
class Control : public DataControlSelection
{
public:
    Control(const Globals &globals, typename Protocol::Manager *manager)
        : m_connection(globals.connection)
        , m_display(globals.display)
        , m_seat(globals.seat)
        , m_manager(manager)
    {
    }

    ~Control() override
    {
        dropSource();
        dropDevice();
        Protocol::destroyManager(m_manager);
        wl_seat_destroy(m_seat);
        wl_display_flush(m_display);
    }

    bool take(SelectionContent content, Readiness readiness) override
    {
        typename Protocol::Source *source = Protocol::makeSource(m_manager);
        Protocol::listenToSource(source, &sourceListener, this);
        for (const SelectionTarget &target : content)
            Protocol::offer(source, target.name.c_str());
        Protocol::setSelection(device(), source);
        // After the new one, so that there is no moment without an owner.
        dropSource();
        m_source = source;
        setContent(std::move(content), readiness);
        return wl_display_flush(m_display) >= 0 || errno == EAGAIN;
    }

    void clear() override
    {
        Protocol::setSelection(device(), nullptr);
        dropSource();
        setContent({}, Readiness::ready);
        wl_display_flush(m_display);
    }

    bool isOwner() const override { return m_source != nullptr; }

private:
    /// Made when it is first needed: from then on every copy of any program wakes this one.
    typename Protocol::Device *device()
    {
        if (!m_device) {
            m_device = Protocol::makeDevice(m_manager, m_seat);
            Protocol::listenToDevice(m_device, &deviceListener, this);
        }
        return m_device;
    }

    void dropDevice()
    {
        if (m_device)
            Protocol::destroyDevice(std::exchange(m_device, nullptr));
    }

    void dropSource()
    {
        if (m_source)
            Protocol::destroySource(std::exchange(m_source, nullptr));
    }

    // What others copy is none of ours, but each offer of it must be let go.
    static void offered(void *, typename Protocol::Device *, typename Protocol::Offer *) { }
    static void selected(void *, typename Protocol::Device *, typename Protocol::Offer *offer)
    {
        if (offer)
            Protocol::destroyOffer(offer);
    }
    static void finished(void *data, typename Protocol::Device *)
    {
        static_cast<Control *>(data)->dropDevice();
    }
    static constexpr
        typename Protocol::DeviceListener deviceListener{&offered, &selected, &finished, &selected};

    static void requested(void *data, typename Protocol::Source *, const char *type, int descriptor)
    {
        static_cast<Control *>(data)->send(type, descriptor);
    }
    static void cancelled(void *data, typename Protocol::Source *source)
    {
        auto &self = *static_cast<Control *>(data);
        if (self.m_source != source)
            return;
        self.dropSource();
        if (self.onLost)
            self.onLost();
    }
    static constexpr typename Protocol::SourceListener sourceListener{&requested, &cancelled};

    std::shared_ptr<const void> m_connection; ///< ends after all the rest
    wl_display *m_display;
    wl_seat *m_seat;
    typename Protocol::Manager *m_manager;
    typename Protocol::Device *m_device = nullptr;
    typename Protocol::Source *m_source = nullptr;
};

} // namespace

std::unique_ptr<DataControlSelection> DataControlSelection::create(const Globals &globals)
{
    if (globals.seat && globals.ext) {
        if (globals.wlr)
            zwlr_data_control_manager_v1_destroy(globals.wlr);
        return std::make_unique<Control<Ext>>(globals, globals.ext);
    }
    if (globals.seat && globals.wlr)
        return std::make_unique<Control<Wlr>>(globals, globals.wlr);
    return nullptr;
}

DataControlSelection::~DataControlSelection()
{
    for (const Request &request : m_waiting)
        close(request.descriptor);
}

void DataControlSelection::provide(SelectionContent content)
{
    m_content = std::move(content);
    m_isReady = true;
    answerWaiting();
}

/// Readers that still wait for the content before get nothing.
void DataControlSelection::setContent(SelectionContent content, Readiness readiness)
{
    m_content.clear();
    answerWaiting();
    m_content = std::move(content);
    m_isReady = readiness == Readiness::ready;
}

void DataControlSelection::send(const std::string &type, int descriptor)
{
    m_waiting.push_back({type, descriptor});
    if (m_isReady)
        answerWaiting();
}

void DataControlSelection::answerWaiting()
{
    for (const Request &request : std::exchange(m_waiting, {})) {
        const auto target = std::find_if(
            m_content.begin(), m_content.end(),
            [&request](const SelectionTarget &offered) { return offered.name == request.type; });
        if (target == m_content.end())
            close(request.descriptor);
        else
            m_writers.add(request.descriptor, target->bytes);
    }
}

} // namespace tovek
