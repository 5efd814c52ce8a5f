// SPDX-License-Identifier: Apache-2.0
// The types of type_kinds_idlc.idl as type codes.
#pragma once

#include "support/types/type_book.h"

namespace interop {

class TypeKinds {
  public:
    using MemberOf = support::MemberOf;
    using TypeBook = support::TypeBook;

    // The topic types.
    const DDS_TypeCode *everything() {
        return book_.structure("kinds::Everything", DDS_MUTABLE_EXTENSIBILITY, members());
    }
    const DDS_TypeCode *plain() {
        return book_.structure("kinds::Plain", DDS_FINAL_EXTENSIBILITY,
                               {MemberOf("where", 0, point_).key(), {"id", 1, of(DDS_TK_ULONG)}});
    }
    const DDS_TypeCode *growing() {
        return book_.structure(
            "kinds::Growing", DDS_APPENDABLE_EXTENSIBILITY,
            {MemberOf("first", 0, long_).optional(), {"shades", 1, book_.array(shade_, {3})}});
    }
    const DDS_TypeCode *top() {
        return book_.unite("kinds::Top", DDS_APPENDABLE_EXTENSIBILITY, of(DDS_TK_SHORT),
                           {MemberOf("number", 1, long_).labels({1}),
                            MemberOf("text", 2, book_.string()).by_default()});
    }
    const DDS_TypeCode *deep() {
        return book_.structure("kinds::inner::Deep", DDS_FINAL_EXTENSIBILITY,
                               {{"where", 0, point_}});
    }

    // Arrays, which the file lacks: its compiler takes their size for that of one dimension.
    const DDS_TypeCode *arrays() {
        return book_.structure("kinds::Arrays", DDS_FINAL_EXTENSIBILITY,
                               {{"square", 0, book_.array(point_, {20})},
                                {"grid", 1, book_.array(long_, {20, 20})},
                                {"wide", 2, book_.array(point_, {2, 300})}});
    }

  private:
    static const DDS_TypeCode *of(DDS_TCKind kind) { return TypeBook::primitive(kind); }

    TypeBook::Members members() {
        return {{"flag", 0, of(DDS_TK_BOOLEAN)},
                {"letter", 1, of(DDS_TK_CHAR)},
                {"raw", 2, of(DDS_TK_OCTET)},
                {"small", 3, of(DDS_TK_SHORT)},
                {"positive", 4, of(DDS_TK_USHORT)},
                MemberOf("number", 5, long_).key(),
                {"word", 6, of(DDS_TK_ULONG)},
                {"wide", 7, of(DDS_TK_LONGLONG)},
                {"widest", 8, of(DDS_TK_ULONGLONG)},
                {"single", 9, of(DDS_TK_FLOAT)},
                {"real", 10, of(DDS_TK_DOUBLE)},
                MemberOf("text", 11, book_.string()).key(),
                {"bounded", 12, book_.string(255)},
                {"longer", 13, book_.string(256)},
                MemberOf("shade", 14, shade_).must_understand(),
                MemberOf("step", 15, step_).optional(),
                MemberOf("perhaps", 16, book_.string(4)).optional(),
                {"octets", 17, book_.sequence(of(DDS_TK_OCTET))},
                {"numbers", 18, book_.sequence(long_, 255)},
                {"path", 19, book_.sequence(point_, 256)},
                {"names", 20, book_.sequence(book_.string(16), 4)},
                {"table", 21, book_.sequence(book_.sequence(pair_, 2), 3)},
                {"matrix", 22, book_.array(long_, {2, 3})},
                {"points", 23, book_.array(point_, {4})},
                {"lines", 24, book_.array(book_.string(300), {300})},
                {"codes", 25, book_.array(step_, {5})},
                {"pair", 26, pair_},
                {"simple", 27, simple_},
                {"fallback", 28, fallback_},
                {"lettered", 29, lettered_},
                {"far", 0x0ffffff0, pair_}};
    }
    TypeBook book_;
    const DDS_TypeCode *const long_ = of(DDS_TK_LONG);
    const DDS_TypeCode *const shade_ = book_.enumeration(
        "kinds::Shade", DDS_FINAL_EXTENSIBILITY, {{"DARK", 0}, {"MEDIUM", 1}, {"LIGHT", 2}});
    const DDS_TypeCode *const step_ =
        book_.enumeration("kinds::Step", DDS_APPENDABLE_EXTENSIBILITY,
                          {{"FIRST", 0}, {"MIDDLE", 1}, {"LAST", 2}, {"BEYOND", 3}});
    const DDS_TypeCode *const point_ =
        book_.structure("kinds::Point", DDS_FINAL_EXTENSIBILITY,
                        {{"x", 0, of(DDS_TK_SHORT)}, {"y", 1, of(DDS_TK_SHORT)}});
    const DDS_TypeCode *const pair_ = book_.structure(
        "kinds::Pair", DDS_APPENDABLE_EXTENSIBILITY,
        {MemberOf("left", 7, long_).key(), MemberOf("right", 3, point_).optional()});
    const DDS_TypeCode *const simple_ =
        book_.unite("kinds::Simple", DDS_FINAL_EXTENSIBILITY, long_,
                    {MemberOf("number", 1, long_).labels({0}),
                     MemberOf("text", 4, book_.string(8)).labels({5, 2}),
                     MemberOf("point", 2, point_).labels({-1})});
    const DDS_TypeCode *const fallback_ =
        book_.unite("kinds::Fallback", DDS_APPENDABLE_EXTENSIBILITY, shade_,
                    {MemberOf("real", 1, of(DDS_TK_DOUBLE)).labels({0}),
                     MemberOf("pairs", 2, book_.sequence(pair_, 3)).by_default()});
    const DDS_TypeCode *const lettered_ =
        book_.unite("kinds::Lettered", DDS_FINAL_EXTENSIBILITY, of(DDS_TK_CHAR),
                    {MemberOf("one", 1, of(DDS_TK_OCTET)).labels({'a'}),
                     MemberOf("two", 2, of(DDS_TK_BOOLEAN)).labels({'b'})});
};

}  // namespace interop
