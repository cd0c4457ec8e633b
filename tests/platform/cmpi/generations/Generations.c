// SPDX-License-Identifier: Apache-2.0
/*
 * A provider that knows the interface by places in memory alone, as the headers of several years
 * had them compiled in: GENERATION is 90, 100 or 200. With WRAPPED it hands its own copy of the
 * broker's first three members on, as C++ wrapper libraries do.
 *
 * Its function table ends where the readable memory does, so that whoever reads a slot which its
 * version does not have ends the process.
 */
#include <stddef.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

typedef struct {
  int code;
  void* message;
} Status;

typedef struct {
  unsigned short type;
  unsigned short state;
  /* A value is as wide as a pointer and a length. */
  union {
    unsigned short number;
    void* object;
    struct {
      void* bytes;
      unsigned int length;
    } both;
  } value;
} Data;

/* Every object, and the tables of the broker: a list of functions behind an int. */
typedef struct {
  void* handle;
  void** table;
} Object;

typedef struct {
  void* handle;
  void** upcalls;
  void** factories;
#if GENERATION >= 100
  void** threads;
#endif
#if GENERATION >= 200
  void** memory;
#endif
} Broker;

enum { kUint16 = 0x90, kReference = 0x1100, kChars = 0x1700, kFailed = 1, kNotFound = 6 };

static const Broker* theBroker;

/* What the headers of those years made of a string, and of the question for a null object. */
static const char* TextOf(const Object* string) {
  return (const char*)string->handle;
}
static int IsNull(const Object* object) {
  return object == NULL || object->handle == NULL;
}

static Object* NewPath(const char* nameSpace, const char* name) {
  Object* (*newObjectPath)(const Broker*, const char*, const char*, Status*) =
      (Object * (*)(const Broker*, const char*, const char*, Status*)) theBroker->factories[2];
  Status (*addKey)(Object*, const char*, const void*, unsigned short) = NULL;
  Status status = {kFailed, NULL};
  Object* path = newObjectPath(theBroker, nameSpace, "G_Thing", &status);
  if (IsNull(path) || status.code != 0) return NULL;
  addKey = (Status(*)(Object*, const char*, const void*, unsigned short))path->table[9];
  addKey(path, "Name", name, kChars);
  return path;
}

static Object* NewThing(const char* nameSpace, const char* name, unsigned short level) {
  Object* (*newInstance)(const Broker*, const Object*, Status*) =
      (Object * (*)(const Broker*, const Object*, Status*)) theBroker->factories[1];
  Status (*setProperty)(Object*, const char*, const void*, unsigned short) = NULL;
  Object* thing = newInstance(theBroker, NewPath(nameSpace, name), NULL);
  if (IsNull(thing)) return NULL;
  setProperty = (Status(*)(Object*, const char*, const void*, unsigned short))thing->table[6];
  setProperty(thing, "Level", &level, kUint16);
  setProperty(thing, "Home", nameSpace, kChars);
  return thing;
}

static const char* NameSpaceOf(Object* path) {
  Object* (*getNameSpace)(Object*, Status*) = (Object * (*)(Object*, Status*)) path->table[4];
  return TextOf(getNameSpace(path, NULL));
}

static Status Cleanup(void* mi, Object* context, unsigned char terminating) {
  const Status ok = {0, NULL};
  (void)mi;
  (void)context;
  (void)terminating;
  return ok;
}

static Status EnumerateInstanceNames(void* mi, Object* context, Object* result, Object* asked) {
  Status (*returnObjectPath)(Object*, Object*) = (Status(*)(Object*, Object*))result->table[5];
  Status (*returnDone)(Object*) = (Status(*)(Object*))result->table[6];
  (void)mi;
  (void)context;
  returnObjectPath(result, NewPath(NameSpaceOf(asked), "one"));
  returnObjectPath(result, NewPath(NameSpaceOf(asked), "two"));
  return returnDone(result);
}

/* How many things the broker finds when it is asked back. */
static unsigned short Count(Object* context, Object* asked) {
  Object* (*enumerateInstanceNames)(const Broker*, Object*, Object*, Status*) =
      (Object * (*)(const Broker*, Object*, Object*, Status*)) theBroker->upcalls[6];
  Object* found = enumerateInstanceNames(theBroker, context, asked, NULL);
  unsigned short count = 0;
  if (IsNull(found)) return 0;
  while (((unsigned char (*)(Object*, Status*))found->table[4])(found, NULL)) {
    Data next = ((Data(*)(Object*, Status*))found->table[3])(found, NULL);
    count = (unsigned short)(count + (next.type == kReference && !IsNull(next.value.object)));
  }
  return count;
}

static Status EnumerateInstances(void* mi, Object* context, Object* result, Object* asked,
                                 const char** properties) {
  Status (*returnInstance)(Object*, Object*) = (Status(*)(Object*, Object*))result->table[4];
  Status (*returnDone)(Object*) = (Status(*)(Object*))result->table[6];
  (void)mi;
  (void)properties;
  returnInstance(result, NewThing(NameSpaceOf(asked), "one", 1));
  returnInstance(result, NewThing(NameSpaceOf(asked), "two", Count(context, asked)));
  return returnDone(result);
}

static Status GetInstance(void* mi, Object* context, Object* result, Object* path,
                          const char** properties) {
  Data (*getKey)(Object*, const char*, Status*) =
      (Data(*)(Object*, const char*, Status*))path->table[10];
  Status (*returnInstance)(Object*, Object*) = (Status(*)(Object*, Object*))result->table[4];
  const Data name = getKey(path, "Name", NULL);
  Status status = {kNotFound, NULL};
  (void)mi;
  (void)context;
  (void)properties;
  if (strcmp(TextOf(name.value.object), "three") == 0) return status;
#if GENERATION >= 200
  {
    /* What is made between a mark and its release is gone; the answer is made afterwards. */
    void* (*mark)(const Broker*, Status*) = (void* (*)(const Broker*, Status*))theBroker->memory[1];
    Status (*release)(const Broker*, void*) = (Status(*)(const Broker*, void*))theBroker->memory[2];
    void* level = mark(theBroker, NULL);
    NewPath("root/cimv2", "gone");
    release(theBroker, level);
  }
#endif
  return returnInstance(result, NewThing(NameSpaceOf(path), TextOf(name.value.object), 7));
}

/* A version, a name and the functions that there were in that year. */
typedef struct {
  int version;
  int providerVersion;
  const char* name;
  void* functions[8];
} Table;

static Table* MakeTable(void) {
  const size_t page = (size_t)sysconf(_SC_PAGESIZE);
  char* pages = mmap(NULL, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  Table* table = NULL;
  if (pages == MAP_FAILED || mprotect(pages + page, page, PROT_NONE) != 0) return NULL;
  table = (Table*)(void*)(pages + page - sizeof(Table));
  table->version = GENERATION;
  table->providerVersion = GENERATION;
  table->name = "Generation";
  table->functions[0] = (void*)Cleanup;
  table->functions[1] = (void*)EnumerateInstanceNames;
  table->functions[2] = (void*)EnumerateInstances;
  table->functions[3] = (void*)GetInstance;
  return table;
}

static Object* Create(const Broker* broker) {
  static Object mi;
#ifdef WRAPPED
  static Broker copy;
  copy.handle = broker->handle;
  copy.upcalls = broker->upcalls;
  copy.factories = broker->factories;
  theBroker = &copy;
#else
  theBroker = broker;
#endif
  if (mi.table == NULL) mi.table = (void**)MakeTable();
  return mi.table == NULL ? NULL : &mi;
}

#if GENERATION < 100
Object* Generation_Create_InstanceMI(const Broker* broker, void* context);
Object* Generation_Create_InstanceMI(const Broker* broker, void* context) {
  (void)context;
  return Create(broker);
}
#else
Object* Generation_Create_InstanceMI(const Broker* broker, void* context, Status* status);
Object* Generation_Create_InstanceMI(const Broker* broker, void* context, Status* status) {
  (void)context;
  /* The macros of those years never wrote the status; it is what the broker has set it to. */
  return status->code == 0 ? Create(broker) : NULL;
}
#endif
