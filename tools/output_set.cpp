// Writing the outputs of one run all or nothing (see OutputSet in message_io.h).
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "message_io.h"

namespace heron_tool {
namespace {

ToolError WriteError(const std::string& path, int error) {
  return ToolError{path, std::string("cannot write: ") + std::strerror(error), kExitWriteFailure};
}

std::string DirectoryOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Writes all of `data` to `fd`; 0 or the errno of the failure.
int WriteAll(int fd, const std::string& data) {
  size_t done = 0;
  while (done < data.size()) {
    const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    done += static_cast<size_t>(n);
  }
  return 0;
}

// Where and how one output goes.
struct Plan {
  std::string path;     // as the user named it, for messages
  std::string target;   // the file a rename replaces (symlinks resolved)
  bool through = false; // write straight through to `path`
  mode_t mode = 0;      // permission bits of the file a rename leaves
  std::string temporary;
};

mode_t NewFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Follows a chain of symlinks that ends at a name that does not exist yet.
std::string FollowDanglingLinks(const std::string& path) {
  std::string current = path;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat st;
    if (::lstat(current.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return current;
    char buf[PATH_MAX];
    const ssize_t n = ::readlink(current.c_str(), buf, sizeof buf - 1);
    if (n < 0) return current;
    std::string next(buf, static_cast<size_t>(n));
    current = next[0] == '/' ? next : DirectoryOf(current) + "/" + next;
  }
  throw WriteError(path, ELOOP);
}

Plan PlanOutput(const std::string& path) {
  Plan plan;
  plan.path = path;
  if (path.empty() || path == "-") {
    plan.through = true;
    return plan;
  }
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) {
    if (errno != ENOENT) throw WriteError(path, errno);
    plan.target = FollowDanglingLinks(path);
    plan.mode = NewFileMode();
    return plan;
  }
  if (S_ISDIR(st.st_mode)) throw ToolError{path, "cannot write: is a directory", kExitWriteFailure};
  if (!S_ISREG(st.st_mode)) {
    plan.through = true;  // a device, a pipe, a socket: never replaced
    return plan;
  }
  if (::access(path.c_str(), W_OK) != 0) throw WriteError(path, errno);
  char* real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) throw WriteError(path, errno);
  plan.target = real;
  std::free(real);
  plan.mode = st.st_mode & 07777;
  return plan;
}

// A temporary file beside the target holding `data`; 0 or an errno.
int WriteTemporary(Plan& plan, const std::string& data) {
  const std::string target = plan.target;
  const size_t slash = target.rfind('/');
  const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
  std::string name = DirectoryOf(target) + "/." + base + ".heron-XXXXXX";
  const int fd = ::mkstemp(&name[0]);
  if (fd < 0) return errno;
  plan.temporary = name;
  int error = WriteAll(fd, data);
  if (error == 0 && ::fchmod(fd, plan.mode) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  return error;
}

int WriteThrough(const Plan& plan, const std::string& data) {
  if (plan.path.empty() || plan.path == "-") {
    std::fflush(stdout);
    const size_t n = std::fwrite(data.data(), 1, data.size(), stdout);
    if (n != data.size() || std::fflush(stdout) != 0) return errno != 0 ? errno : EIO;
    return 0;
  }
  const int fd = ::open(plan.path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  int error = WriteAll(fd, data);
  if (::close(fd) != 0 && error == 0) error = errno;
  return error;
}

void RemoveTemporaries(const std::vector<Plan>& plans) {
  for (const Plan& p : plans) {
    if (!p.temporary.empty()) ::unlink(p.temporary.c_str());
  }
}

}  // namespace

void OutputSet::Add(const std::string& path, std::string data) { outputs_.push_back({path, std::move(data)}); }

void OutputSet::Add(const std::string& path, const void* data, size_t size) {
  Add(path, std::string(static_cast<const char*>(data), size));
}

void OutputSet::Commit() {
  std::vector<Plan> plans;
  for (const Output& o : outputs_) plans.push_back(PlanOutput(o.path));
  // Temporaries first, then what goes straight through, then the renames.
  for (size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].through) continue;
    if (const int error = WriteTemporary(plans[i], outputs_[i].data)) {
      RemoveTemporaries(plans);
      throw WriteError(plans[i].path, error);
    }
  }
  for (size_t i = 0; i < plans.size(); ++i) {
    if (!plans[i].through) continue;
    if (const int error = WriteThrough(plans[i], outputs_[i].data)) {
      RemoveTemporaries(plans);
      throw WriteError(plans[i].path.empty() || plans[i].path == "-" ? "<stdout>" : plans[i].path, error);
    }
  }
  for (size_t i = 0; i < plans.size(); ++i) {
    if (plans[i].through) continue;
    if (::rename(plans[i].temporary.c_str(), plans[i].target.c_str()) != 0) {
      const int error = errno;
      RemoveTemporaries(plans);
      throw WriteError(plans[i].path, error);
    }
    plans[i].temporary.clear();
  }
}

void WriteFileAtomically(const std::string& path, const void* data, size_t size) {
  OutputSet set;
  set.Add(path, data, size);
  set.Commit();
}

void WriteOutput(const std::string& path, const std::string& data) {
  OutputSet set;
  set.Add(path, data);
  set.Commit();
}

}  // namespace heron_tool
