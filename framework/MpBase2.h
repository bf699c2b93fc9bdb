// The DSP half of a module: the host-facing faces (setHost, open, process, messages from the GUI half)
// over a table of pins bound by index, event routing by time stamp, and sleep while nothing streams.
#pragma once

#include <type_traits>
#include <vector>

#include "HostBoundary.h"
#include "MpCountedPtr.h"
#include "MpPins.h"
#include "PinTable.h"
#include "RefCounted.h"
#include "gmpi/IMpAudioHost.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"

class MpPluginBase : public kx::RefCounted<gmpi::IMpPlugin, gmpi::IMpPlugin2, IoldSchoolInitialisation,
                                           gmpi::IMpLegacyInitialization> {
public:
    // What the factory needs to know to create a class derived from this one.
    static constexpr int32_t sub_type = gmpi::MP_SUB_TYPE_AUDIO;
    using principal_interface = gmpi::IMpPlugin2;

    MpPluginBase() = default;
    ~MpPluginBase() override = default;

    // ---- faces the host calls
    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    // Modules that override open (to ask the host something) must call this one.
    int32_t open() override { return gmpi::MP_OK; }
    int32_t setBuffer(int32_t pinId, float* buffer) override;
    // The first-generation processing entry does nothing.
    void process(int32_t, gmpi::MpEvent*) override {}
    void process(int32_t count, const gmpi::MpEvent* events) override = 0;
    // Both message entries drop a message that arrives while another is being handled (a module that
    // causes its own GUI half to answer at once would otherwise recurse) and hand the rest to onGuiMessage.
    int32_t receiveMessageFromGui(int32_t id, int32_t size, void* data) override;
    int32_t receiveMessageFromGui(int32_t id, int32_t size, const void* data) override;
    // Obtains both host interfaces; answers the result for the main one.
    int32_t setHost(gmpi::IMpUnknown* host) override;

    // ---- what modules override
    // A message from the GUI half, data valid only during the call.
    virtual int32_t onGuiMessage(int32_t, int32_t, const void*) { return gmpi::MP_FAIL; }
    virtual int32_t onMidiMessage(int, const unsigned char*, int) { return gmpi::MP_OK; }
    virtual int32_t onMidiMessage(int pin, unsigned char* midiMessage, int size) {
        return onMidiMessage(pin, static_cast<const unsigned char*>(midiMessage), size);
    }
    // Called once after each batch of pin changes that share a time stamp.
    virtual void onSetPins() {}
    virtual void OnPinStreamingChange(bool isStreaming) = 0;
    // Every output tells the host its initial value.
    virtual void onGraphStart();

    // ---- for pins and modules
    gmpi::IMpAudioHost* getHost() const { return host.get(); }
    gmpi::IMpProcessorHost* getProcessorHost() const { return processorHost; }
    int getBlockPosition() const { return blockPosition; }
    // Sends a value of an output pin to the host at a block position.
    int32_t sendPinValue(int pinId, int position, int size, const void* data) {
        return host ? host->setPin(position, pinId, size, data) : gmpi::MP_FAIL;
    }
    int32_t sendPinStreaming(int pinId, int position, bool isStreaming);
    // Asks the host how long the module must keep running before it may sleep.
    void resetSleepCounter();
    void raiseSleepCount(int atLeast) { sleepCount = sleepCount < atLeast ? atLeast : sleepCount; }

    // The pin bound to index, or null.
    MpPinBase* getPin(int index) const { return pins.find(index); }

protected:
    // Binding, from the constructor only. The index-less forms take the next index after the highest
    // bound one, so the order of the calls is the pin order. A pin bound to a taken index is not entered.
    void initializePin(int index, MpPinBase& pin, MpBaseMemberPtr handler = nullptr);
    void initializePin(MpPinBase& pin, MpBaseMemberPtr handler = nullptr) {
        initializePin(nextPinIndex(), pin, handler);
    }
    template <class M, std::enable_if_t<std::is_base_of_v<MpPluginBase, M>, int> = 0>
    void initializePin(MpPinBase& pin, void (M::*handler)(const gmpi::MpEvent*)) {
        initializePin(nextPinIndex(), pin, static_cast<MpBaseMemberPtr>(handler));
    }
    int nextPinIndex() const { return pins.nextIndex(); }

    gmpi_sdk::mp_shared_ptr<gmpi::IMpAudioHost> host;
    gmpi::IMpProcessorHost* processorHost = nullptr;  // not counted: the host outlives its modules
    kx::PinTable<MpPinBase> pins;
    int32_t blockPosition = 0;
    int32_t sleepCount = 0;
    int32_t streamingPins = 0;
    int32_t sleepRequested = -1;  // -1 never set; only 1 counts as a request
    bool canSleep = true;
    bool inGuiMessage = false;
};

// The DSP base of this pack's modules: a sub-process over stretches of samples, and sleep once the
// sleep count has run out while no input streams.
class MpBase2 : public MpPluginBase {
public:
    using SubProcess = void (MpBase2::*)(int sampleFrames);

    MpBase2();
    using MpPluginBase::process;
    // Events are taken in list order. Before a time stamp later than the current position the
    // sub-process runs up to it; the events of one time stamp are stored into their pins (first pass),
    // handled (second pass, graph start included), followed by one onSetPins when any changed a pin,
    // and cleared (last pass). After the last event the sub-process runs to the end of the block.
    void process(int32_t count, const gmpi::MpEvent* events) override;
    void OnPinStreamingChange(bool isStreaming) override;

    // true: go through subProcessPreSleep, which runs the chosen sub-process until the sleep count is
    // used up and then lets the host put the module to sleep. Returns the flag.
    bool setSleep(bool isOkToSleep);
    template <class M, std::enable_if_t<std::is_base_of_v<MpBase2, M>, int> = 0>
    void setSubProcess(void (M::*subProcess)(int)) {
        setSubProcessImpl(static_cast<SubProcess>(subProcess));
    }
    void subProcessNothing(int) {}
    void subProcessPreSleep(int sampleFrames);

protected:
    void setSubProcessImpl(SubProcess subProcess);

    SubProcess curSubProcess;
    SubProcess saveSubProcess;

private:
    // Set once the host has been told during the current block that the module may sleep: telling it
    // again for a later stretch of the same block changes nothing.
    bool sleepTold = false;
};
