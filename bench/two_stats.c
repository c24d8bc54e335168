/* The least that can tell whether a copy is up to date: each directory of the original is listed
 * once, and each file looked up on both sides. Prints how many there are and how many differ.
 * Usage: two_stats THREADS ORIGINAL COPY */
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

struct Directory {
    struct Directory* next;
    char path[]; /* below both roots */
};

static int roots[2];
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
static struct Directory* waiting;
static int unfinished;
static long files, differing;

static void announce(const char* above, const char* name) {
    const size_t size = strlen(above) + strlen(name) + 2;
    struct Directory* directory = malloc(sizeof *directory + size);
    if (directory == NULL) abort();
    snprintf(directory->path, size, "%s%s%s", above, *above ? "/" : "", name);
    pthread_mutex_lock(&lock);
    directory->next = waiting;
    waiting = directory;
    ++unfinished;
    pthread_cond_signal(&changed);
    pthread_mutex_unlock(&lock);
}

static int differs(int left, int right, const char* name) {
    struct stat original, copy;
    if (fstatat(left, name, &original, AT_SYMLINK_NOFOLLOW) != 0) return 1;
    if (fstatat(right, name, &copy, AT_SYMLINK_NOFOLLOW) != 0) return 1;
    return original.st_size != copy.st_size || original.st_mtim.tv_sec != copy.st_mtim.tv_sec;
}

static int open_below(int root, const char* path) {
    return openat(root, *path ? path : ".", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

static void look_at(const char* path, long* seen, long* different) {
    const int copy = open_below(roots[1], path);
    const int original = open_below(roots[0], path);
    DIR* listing = original < 0 ? NULL : fdopendir(original);
    const struct dirent* entry;
    while (listing != NULL && (entry = readdir(listing)) != NULL) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) continue;
        if (entry->d_type == DT_DIR) {
            announce(path, entry->d_name);
        } else {
            ++*seen;
            *different += differs(original, copy, entry->d_name);
        }
    }
    if (listing != NULL) closedir(listing);
    if (copy >= 0) close(copy);
}

static void* work(void* unused) {
    long seen = 0, different = 0;
    pthread_mutex_lock(&lock);
    while (unfinished > 0) {
        struct Directory* directory = waiting;
        if (directory == NULL) {
            pthread_cond_wait(&changed, &lock);
            continue;
        }
        waiting = directory->next;
        pthread_mutex_unlock(&lock);
        look_at(directory->path, &seen, &different);
        free(directory);
        pthread_mutex_lock(&lock);
        if (--unfinished == 0) pthread_cond_broadcast(&changed);
    }
    files += seen;
    differing += different;
    pthread_mutex_unlock(&lock);
    return unused;
}

int main(int count, char** words) {
    if (count != 4) return 2;
    const int threads = atoi(words[1]);
    pthread_t others[64];
    if (threads < 1 || threads > 65) return 2;
    for (int side = 0; side < 2; ++side) {
        roots[side] = open(words[2 + side], O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (roots[side] < 0) return 2;
    }
    announce("", "");
    for (int i = 0; i + 1 < threads; ++i) {
        if (pthread_create(&others[i], NULL, work, NULL) != 0) return 2;
    }
    work(NULL);
    for (int i = 0; i + 1 < threads; ++i) pthread_join(others[i], NULL);
    printf("%ld fichiers, %ld différents\n", files, differing);
    return differing == 0 ? 0 : 1;
}
