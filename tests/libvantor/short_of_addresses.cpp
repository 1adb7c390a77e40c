// A program that renders with less and less room for addresses: each time there is a picture, or something is said, and
// the process ends by itself.
#include "renderer/vt_local_scene_proxy.h"
#include "renderer/vt_messages.h"

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

enum Outcome { Drawn, Said, Nothing, Outcomes };

char path[] = "short_of_addresses.png";
bool has_said = false;

extern "C" void note(void *, VtMessageKind, const char *) { has_said = true; }

// Objects of each of Embree's kinds.
Outcome render_twice() {
    VtSetMessageHandler(note, nullptr);
    VtLocalSceneProxy scene(50);
    char name[] = "name";
    VtArgList none(0, 0);
    VtArgList file(0, 0);
    file.Add(VtArgType(name));
    file.Add(VtArgType(path));
    scene.NewCamera("perspective", none);
    scene.NewLight("environment", none);
    scene.MaterialBegin(scene.NewMaterial("diffuse", none));
    scene.AddObject(scene.NewObject("sphere", none));
    scene.AddObject(scene.NewObject("quad", none));
    scene.MaterialEnd();
    scene.ImagerBegin(scene.NewImager("file", file));
    scene.Render(16, 16, 4, 0, 0, 1, 1);
    // What the first pass has left, and something that has to be built.
    scene.MaterialBegin(scene.NewMaterial("diffuse", none));
    scene.AddObject(scene.NewObject("box", none));
    scene.MaterialEnd();
    scene.Radiosity();
    scene.Render(16, 16, 4, 0, 0, 1, 1);
    const bool is_drawn = access(path, R_OK) == 0;
    return has_said ? Said : is_drawn ? Drawn : Nothing;
}

// In a process that has so many bytes of addresses more than this one, and a minute; below 0 if a signal ended it.
int outcome_within(rlim_t bytes) {
    const pid_t process = fork();
    if (process == 0) {
        long pages = 0;
        std::FILE *sizes = std::fopen("/proc/self/statm", "r");
        if (!sizes || std::fscanf(sizes, "%ld", &pages) != 1)
            _exit(Outcomes);
        std::fclose(sizes);
        const rlim_t limit = static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes;
        const rlimit room = {limit, limit};
        if (setrlimit(RLIMIT_AS, &room) != 0)
            _exit(Outcomes);
        alarm(60);
        std::remove(path);
        _exit(render_twice());
    }
    int status = 0;
    if (process < 0 || waitpid(process, &status, 0) != process)
        return Outcomes;
    if (WIFSIGNALED(status))
        std::printf("with %llu KiB: signal %d\n", static_cast<unsigned long long>(bytes >> 10), WTERMSIG(status));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

int main() {
    int counts[Outcomes] = {};
    bool is_good = true;
    // Where little is missing, and where much is.
    constexpr rlim_t mib = rlim_t{1} << 20;
    for (rlim_t bytes = 0; bytes < 320 * mib; bytes += bytes < 24 * mib ? mib / 2 : 4 * mib) {
        const int outcome = outcome_within(bytes);
        if (outcome == Drawn || outcome == Said)
            ++counts[outcome];
        else
            is_good = false;
    }
    std::remove(path);
    std::printf("%d drawn, %d said that memory is short\n", counts[Drawn], counts[Said]);
    return is_good && counts[Drawn] > 0 && counts[Said] > 0 ? 0 : 1;
}
