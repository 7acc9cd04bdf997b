#include "session/save_file.h"

#include "numbers/display_modes.h"
#include "session/listing.h"
#include "session/save_settings.h"
#include "storage/failure.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
namespace tolvex {
namespace {
constexpr size_t k_path = 4096 + 16;
/// The file behind outpuf.
struct OutputFile {
    char target[k_path];  // the path, links resolved
    char beside[k_path];  // where its content grows until it takes its place; empty: in place
    long image_start;     // where an image that is not complete begins, -1: none
    bool writing;         // an image is being written: a level that opens meanwhile leaves the file alone
};
OutputFile output = {"", "", -1, false};
}  // namespace

// ---- opening and closing -------------------------------------------------------------------------------

/// A fresh file beside the target, with its permissions. Its name is that of the target, as far as it goes,
/// and a mark.
static FILE* open_beside(const struct stat* old) {
    static const char mark[] = ".XXXXXX";
    const char* slash = strrchr(output.target, '/');
    size_t folder = slash == nullptr ? 0 : static_cast<size_t>(slash + 1 - output.target);
    size_t length = strlen(output.target), most = folder + NAME_MAX + 1 - sizeof mark;
    if (length > most) length = most;
    if (length + sizeof mark > k_path) return nullptr;
    memcpy(output.beside, output.target, length);
    strcpy(output.beside + length, mark);
    int fd = mkstemp(output.beside);
    if (fd < 0) return nullptr;
    mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, old != nullptr ? old->st_mode & 07777 : 0666 & ~mask);
    return fdopen(fd, "w");
}

/// While a file is open for writing, a limit on the size of files or a reader that leaves its pipe is a write
/// that fails (error 348) and not the end of the session.
static void outlive_failed_writes(bool file_is_open) {
    using Handler = void (*)(int);
    static Handler before[2];
    static bool outliving = false;
    if (outliving == file_is_open) return;
    outliving = file_is_open;
    constexpr int k_signals[2] = {SIGXFSZ, SIGPIPE};
    for (int i = 0; i < 2; i++) {
        Handler old = signal(k_signals[i], file_is_open ? SIG_IGN : before[i]);
        if (file_is_open) before[i] = old;
    }
}

static FILE* open_for_writing(const char* name) {
    struct stat about;
    output.beside[0] = 0;
    output.image_start = -1;
    bool there = stat(name, &about) == 0;
    if (there && (S_ISDIR(about.st_mode) || access(name, W_OK) != 0)) return nullptr;
    if (there && !S_ISREG(about.st_mode)) return fopen(name, "w");
    if (!there || realpath(name, output.target) == nullptr) snprintf(output.target, k_path, "%s", name);
    FILE* file = open_beside(there ? &about : nullptr);
    if (file == nullptr) output.beside[0] = 0;
    return file;
}

/// An image that was cut off goes.
static void drop_partial_image() {
    if (output.image_start < 0) return;
    fflush(outpuf);
    if (ftruncate(fileno(outpuf), output.image_start) == 0) fseek(outpuf, output.image_start, SEEK_SET);
    output.image_start = -1;
}

/// The content is on the disk and at its path. False if it could not be written.
static bool commit() {
    bool written = fflush(outpuf) == 0 && ferror(outpuf) == 0;
    if (output.beside[0] == 0) return written;
    written = written && fsync(fileno(outpuf)) == 0 && rename(output.beside, output.target) == 0;
    if (!written) unlink(output.beside);
    output.beside[0] = 0;
    return written;
}

/// Nothing has been written: what stands at the path stays.
static void leave_old_content() {
    if (output.beside[0] == 0 || ftell(outpuf) != 0 || access(output.target, F_OK) != 0) return;
    unlink(output.beside);
    output.beside[0] = 0;
}

/// Closes the stream; false if its last bytes could not be written.
static bool give_up_file() {
    bool written = fclose(outpuf) == 0;
    outpuf = nullptr;
    output_file_name[0] = 0;
    outlive_failed_writes(false);
    return written;
}

static bool close_output_file() {
    if (outpuf == nullptr) return true;
    drop_partial_image();
    leave_old_content();
    bool written = commit();
    return give_up_file() && written;
}

void finish_output_file() { close_output_file(); }

static bool close_by_name(bool quiet) {
    if (!quiet) {
        if (outpuf == nullptr)
            printf(" *** Warning. No output file had been open.\n");
        else
            printf(" Now closing %s.\n", output_file_name);
    }
    if (close_output_file()) return true;
    error(Err::file_write_failed);
    return false;
}

/// Error 362 from a level that has been opened while an image is written.
static bool refuse_while_writing() {
    if (!output.writing) return false;
    error(Err::not_now);
    return true;
}

bool save_named(const char* name, bool quiet) {
    if (refuse_while_writing()) return false;
    if (*name == 0) {
        error(Err::file_name_missing);
        return false;
    }
    if (strcmp(name, input_file_name) == 0) {
        error(Err::file_open_otherwise);
        return false;
    }
    if (strcmp(name, "@") == 0) return close_by_name(quiet);
    if (!close_output_file()) {
        error(Err::file_write_failed);
        return false;
    }
    outpuf = open_for_writing(name);
    if (outpuf == nullptr) {
        printf(" *** Warning. %s: cannot be opened. Save cancelled.\n", name);
        error(Err::file_not_opened);
        return false;
    }
    snprintf(output_file_name, sizeof output_file_name, "%s", name);
    outlive_failed_writes(true);
    return true;
}

// ---- the image -----------------------------------------------------------------------------------------

static void write_image() {
    save_settings(outpuf);
    fputs("\n\n;;** functions:\n", outpuf);
    save_functions(outpuf);
    fputs("\n;;** scalars:\n", outpuf);
    save_variables(outpuf);
    fputs("\n;;**  arrays:\n", outpuf);
    save_arrays(outpuf);
    fputs("&x;\n", outpuf);
}

void forget_image() {
    if (!output.writing) return;
    output.writing = false;
    drop_partial_image();
}

/// The image that begins at `first` could not be written: the images before it stay as they are.
static void give_up_image(long first) {
    int fd = dup(fileno(outpuf));
    give_up_file();  // what its buffer holds may get through even now
    if (fd < 0) return;
    if (first >= 0 && ftruncate(fd, first) != 0) errno = 0;  // no plain file
    close(fd);
}

void save_session() {
    if (refuse_while_writing()) return;
    output.image_start = ftell(outpuf);  // -1 for a pipe, which cannot take anything back
    output.writing = true;
    write_image();
    output.writing = false;
    long first = output.image_start;
    output.image_start = -1;
    if (!commit()) {
        give_up_image(first);
        error(Err::file_write_failed);
        return;
    }
    if (uglyprint)
        printf(" Warning: You saved with ugly format! File is unreadable, except for the variables.\n");
}
}  // namespace tolvex
