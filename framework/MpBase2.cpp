#include "MpBase2.h"

#include <algorithm>

#include "ModuleSupport.h"

// ---- pins

void MpPinBase::processEvent(const gmpi::MpEvent* e) {
    if (eventHandler_ && plugin_)
        (plugin_->*eventHandler_)(e);
}

int MpPinBase::blockPosition() const { return plugin_ ? plugin_->getBlockPosition() : 0; }

void MpPinBase::sendPinUpdate(int position, int size, const void* data) {
    if (plugin_)
        plugin_->sendPinValue(id_, position < 0 ? plugin_->getBlockPosition() : position, size, data);
}

void AudioInPin::preProcessEvent(const gmpi::MpEvent* e) {
    if (e->eventType != gmpi::EVENT_PIN_STREAMING_START && e->eventType != gmpi::EVENT_PIN_STREAMING_STOP)
        return;
    isStreaming_ = e->eventType == gmpi::EVENT_PIN_STREAMING_START;
    eventPending_ = true;
    if (plugin_) {
        plugin_->OnPinStreamingChange(isStreaming_);
        // The last samples of a stopped signal still have to pass through the module.
        if (!isStreaming_)
            plugin_->raiseSleepCount(1);
    }
}

void AudioOutPin::sendFirstUpdate() {
    if (plugin_)
        plugin_->sendPinStreaming(id_, blockPosition(), isStreaming_);
}

void AudioOutPin::setStreaming(bool isStreaming, int position) {
    if (!plugin_)
        return;
    if (isStreaming != isStreaming_) {
        isStreaming_ = isStreaming;
        plugin_->OnPinStreamingChange(isStreaming);
    }
    if (!isStreaming)
        plugin_->resetSleepCounter();
    plugin_->sendPinStreaming(id_, position < 0 ? blockPosition() : position, isStreaming);
}

void MidiInPin::processEvent(const gmpi::MpEvent* e) {
    if (e->eventType != gmpi::EVENT_MIDI || !plugin_)
        return;
    if (eventHandler_) {
        MpPinBase::processEvent(e);
        return;
    }
    const auto bytes = kx::detail::eventBytes(e);
    plugin_->onMidiMessage(id_, static_cast<const unsigned char*>(bytes.data), static_cast<int>(bytes.size));
}

void MidiOutPin::send(const unsigned char* data, int size, int position) {
    if (plugin_)
        plugin_->sendPinValue(id_, position < 0 ? blockPosition() : position, size, data);
}

// ---- MpPluginBase

int32_t MpPluginBase::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (gmpi::isUnknownIid(iid) || iid == gmpi::MP_IID_PLUGIN2)
        *returnInterface = static_cast<gmpi::IMpPlugin2*>(this);
    else if (iid == gmpi::MP_IID_PLUGIN)
        *returnInterface = static_cast<gmpi::IMpPlugin*>(this);
    else if (iid == gmpi::MP_IID_LEGACY_INITIALIZATION)
        *returnInterface = static_cast<gmpi::IMpLegacyInitialization*>(this);
    else
        return gmpi::MP_NOSUPPORT;
    addRef();
    return gmpi::MP_OK;
}

int32_t MpPluginBase::setBuffer(int32_t pinId, float* buffer) {
    MpPinBase* pin = getPin(pinId);
    return pin ? pin->setBuffer(buffer) : gmpi::MP_FAIL;
}

int32_t MpPluginBase::receiveMessageFromGui(int32_t id, int32_t size, void* data) {
    return receiveMessageFromGui(id, size, static_cast<const void*>(data));
}

int32_t MpPluginBase::receiveMessageFromGui(int32_t id, int32_t size, const void* data) {
    if (inGuiMessage)
        return gmpi::MP_OK;
    const kx::ReentryFlag handling(inGuiMessage);
    return onGuiMessage(id, size, data);
}

int32_t MpPluginBase::setHost(gmpi::IMpUnknown* hostObject) {
    if (!hostObject)
        return gmpi::MP_NOSUPPORT;
    void* found = nullptr;
    if (hostObject->queryInterface(gmpi::MP_IID_PROCESSOR_HOST, &found) == gmpi::MP_OK)
        processorHost = static_cast<gmpi::IMpProcessorHost*>(found);
    found = nullptr;
    const int32_t result = hostObject->queryInterface(gmpi::MP_IID_HOST, &found);
    if (result == gmpi::MP_OK && found)
        host = gmpi_sdk::mp_shared_ptr<gmpi::IMpAudioHost>::adopt(static_cast<gmpi::IMpAudioHost*>(found));
    return result;
}

void MpPluginBase::onGraphStart() {
    for (const auto& slot : pins)
        if (slot.pin->getDirection() == MP_OUT)
            slot.pin->sendFirstUpdate();
}

int32_t MpPluginBase::sendPinStreaming(int pinId, int position, bool isStreaming) {
    return host ? host->setPinStreaming(position, pinId, isStreaming ? 1 : 0) : gmpi::MP_FAIL;
}

void MpPluginBase::resetSleepCounter() {
    if (host)
        host->resetSleepCounter(&sleepCount);
}

void MpPluginBase::initializePin(int index, MpPinBase& pin, MpBaseMemberPtr handler) {
    if (!handler && pin.getDirection() == MP_IN)
        handler = pin.getDefaultEventHandler();
    pin.bind(index, this, handler);
    pins.add(index, pin);
}

// ---- MpBase2

MpBase2::MpBase2() : curSubProcess(&MpBase2::subProcessPreSleep), saveSubProcess(&MpBase2::subProcessNothing) {}

void MpBase2::process(int32_t count, const gmpi::MpEvent* events) {
    if (count < 0)
        count = 0;
    blockPosition = 0;
    sleepTold = false;
    const gmpi::MpEvent* e = events;
    while (e) {
        // A time stamp is an offset inside the block. One outside it or behind the current position is
        // handled at the nearest position inside that is still ahead (a late one at the last sample),
        // never before samples already processed.
        const int32_t last = count > 0 ? count - 1 : 0;
        const int32_t stamp = std::clamp(e->timeDelta, blockPosition, std::max(last, blockPosition));
        if (stamp > blockPosition) {
            (this->*curSubProcess)(stamp - blockPosition);
            blockPosition = stamp;
        }
        const gmpi::MpEvent* end = e;
        while (end && end->timeDelta == e->timeDelta)
            end = end->next;

        bool pinsChanged = false;
        for (auto* ev = e; ev != end; ev = ev->next)
            if (ev->eventType >= gmpi::EVENT_PIN_SET && ev->eventType <= gmpi::EVENT_MIDI)
                if (MpPinBase* pin = getPin(ev->parm1))
                    pin->storeEvent(ev);
        for (auto* ev = e; ev != end; ev = ev->next) {
            if (ev->eventType == gmpi::EVENT_GRAPH_START) {
                onGraphStart();
            } else if (ev->eventType >= gmpi::EVENT_PIN_SET && ev->eventType <= gmpi::EVENT_MIDI) {
                if (MpPinBase* pin = getPin(ev->parm1)) {
                    pin->handleEvent(ev);
                    pinsChanged |= ev->eventType != gmpi::EVENT_MIDI;
                }
            }
        }
        if (pinsChanged)
            onSetPins();
        for (auto* ev = e; ev != end; ev = ev->next)
            if (ev->eventType >= gmpi::EVENT_PIN_SET && ev->eventType <= gmpi::EVENT_MIDI)
                if (MpPinBase* pin = getPin(ev->parm1))
                    pin->clearEvent(ev);
        e = end;
    }
    if (count > blockPosition)
        (this->*curSubProcess)(count - blockPosition);
    blockPosition = 0;
    sleepTold = false;
}

void MpBase2::OnPinStreamingChange(bool isStreaming) {
    streamingPins += isStreaming ? 1 : -1;
    if (streamingPins < 0)
        streamingPins = 0;
    curSubProcess = streamingPins > 0 && sleepRequested != 1 ? saveSubProcess : &MpBase2::subProcessPreSleep;
}

bool MpBase2::setSleep(bool isOkToSleep) {
    if (isOkToSleep)
        curSubProcess = &MpBase2::subProcessPreSleep;
    sleepRequested = isOkToSleep ? 1 : 0;
    return isOkToSleep;
}

void MpBase2::setSubProcessImpl(SubProcess subProcess) {
    if (curSubProcess == saveSubProcess)
        curSubProcess = subProcess;
    saveSubProcess = subProcess;
}

// The chosen sub-process keeps producing output while the sleep count lasts; once it is used up the
// host may stop calling the module until its next event.
void MpBase2::subProcessPreSleep(int sampleFrames) {
    const int32_t start = blockPosition;
    int remaining = sampleFrames;
    while (remaining > 0 && curSubProcess == &MpBase2::subProcessPreSleep) {
        const int slice = sleepCount > 0 ? std::min(remaining, static_cast<int>(sleepCount)) : remaining;
        if (saveSubProcess != &MpBase2::subProcessNothing)
            (this->*saveSubProcess)(slice);
        blockPosition += slice;
        remaining -= slice;
        sleepCount = sleepCount > slice ? sleepCount - slice : 0;
    }
    // A pin that started streaming meanwhile hands the rest of the stretch back to the chosen sub-process.
    if (remaining > 0)
        (this->*curSubProcess)(remaining);
    blockPosition = start;
    if (sleepCount == 0 && curSubProcess == &MpBase2::subProcessPreSleep && canSleep && host && !sleepTold) {
        sleepTold = true;
        host->sleep();
    }
}
