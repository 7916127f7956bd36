#include "ui/kit/modPicture.h"

#include "base/UniqueHandle.h"
#include "ui/kit/modWindow.h"

#include <olectl.h>

#include <cstring>

namespace vesk {

std::span<const std::byte> ResourceBytes(const char* type, int id) {
    const HRSRC found = FindResourceA(ProgramInstance(), MAKEINTRESOURCEA(id), type);
    if (!found)
        return {};
    const HGLOBAL loaded = LoadResource(ProgramInstance(), found);
    return {static_cast<const std::byte*>(LockResource(loaded)),
            SizeofResource(ProgramInstance(), found)};
}

ComPointer<IPicture> PictureFromBytes(std::span<const std::byte> bytes) {
    GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, bytes.size()));
    if (!memory || bytes.empty())
        return {};
    std::memcpy(GlobalLock(memory.Get()), bytes.data(), bytes.size());
    GlobalUnlock(memory.Get());

    IStream* rawStream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(memory.Get(), TRUE, &rawStream)))
        return {};
    (void)memory.Release(); // the stream frees it
    const ComPointer<IStream> stream(rawStream);

    IID iid{};
    wchar_t pictureInterface[] = L"{7BF80980-BF32-101A-8BBB-00AA00300CAB}";
    void* picture = nullptr;
    if (FAILED(CLSIDFromString(pictureInterface, &iid)) ||
        FAILED(OleLoadPicture(stream.get(), static_cast<LONG>(bytes.size()), FALSE, iid, &picture)))
        return {};
    return ComPointer<IPicture>(static_cast<IPicture*>(picture));
}

} // namespace vesk
