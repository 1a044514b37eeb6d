#pragma once
// The base of every object carved from a frame's pool. Pooled objects are never destroyed one by one: give them
// nothing to destroy.

struct ae_obj
{
    ae_obj() = default;
    ae_obj(const ae_obj&) = delete;
    ae_obj& operator=(const ae_obj&) = delete;
    virtual ~ae_obj() = default;
};
