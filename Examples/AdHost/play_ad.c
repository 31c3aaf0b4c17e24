/* play_ad VIRLO-ADHOST AUTHORITY PLACEMENT: shows an ad and waits for its reward. What it needs of JSON is the name of
 * an event; a real host uses the JSON library that it has. */

#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

static FILE* to;
static FILE* from;
static pid_t child;

static void start(const char* program)
{
    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0 || (child = fork()) < 0)
        exit(1);
    if (child == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        execl(program, program, (char*)NULL);
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    to = fdopen(in[1], "w");
    setlinebuf(to);
    from = fdopen(out[0], "r");
}

/* Reads to the event `name`; an error, an ad that is not there, or the end of the process ends this one. */
static void wait_for(const char* name)
{
    char mark[64];
    char* line = NULL;
    size_t room = 0;
    snprintf(mark, sizeof mark, "\"method\":\"%s\"", name);
    while (getline(&line, &room, from) > 0) {
        if (strstr(line, mark) != NULL) {
            fputs(line, stdout);
            free(line);
            return;
        }
        if (strstr(line, "\"error\"") != NULL || strstr(line, "\"method\":\"none\"") != NULL)
            break;
    }
    fprintf(stderr, "play_ad: no \"%s\", but: %s\n", name, line != NULL && !feof(from) ? line : "the end");
    exit(1);
}

int main(int count, char** words)
{
    if (count != 4)
        return 2;
    start(words[1]);
    fprintf(to, "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"start\",\"params\":{\"appIdentifier\":\"c-host\","
            "\"authorities\":\"%s\",\"reachable\":true}}\n", words[2]);
    fprintf(to, "{\"jsonrpc\":\"2.0\",\"id\":2,\"method\":\"request\",\"params\":{\"placement\":\"%s\"}}\n", words[3]);
    wait_for("ready");
    fprintf(to, "{\"jsonrpc\":\"2.0\",\"id\":3,\"method\":\"show\",\"params\":{\"ad\":1}}\n");
    wait_for("shown");
    wait_for("closed");
    wait_for("reward");
    fclose(to); /* the end of the input ends the session and the process */
    int status = 1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
