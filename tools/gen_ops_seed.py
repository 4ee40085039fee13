#!/usr/bin/env python3
"""One-time seed of zelmar_ops.def from the list of operation names.
The .def file is the source of truth afterwards and is edited by hand."""
import re, sys
names = [l.strip() for l in open(sys.argv[1]) if l.strip()]
V3 = ('location','direction','xyz','normal','center','center_of_mass','rotate_reference_point',
      'chase_offset','track_offset','color','location1','direction1','dimensions','speed','absolute_speed',
      'physics_rotation','physics_force','ambient','diffuse','specular','force')
INTS = ('type','flag','number','count','num','index','handle','frame','control_number','orientation',
        'chase_type','mode','status','size','quality','depth','accuracy','resolution','brightness_i')
def sig(n):
    short = n[len('ZELMAR_'):]
    fam, _, op = short.partition('_')
    if short.startswith('3D_animation'): fam, op = '3D_animation', short[len('3D_animation_'):]
    if short.startswith('3D_card'): fam, op = '3D_card', short[len('3D_card_'):]
    h = 'int handle'
    if op.startswith('is_') or op.startswith('are_'):
        return 'int', f'({h})'
    if re.match(r'get_first_(group|camera|light|track|background|bitmap|animation|polygon)$', op) and not (fam=='group' and op=='get_first_polygon') and not (fam=='group' and op=='get_first_included_group'):
        return 'int', '(void)'
    if op.startswith('get_next') or op.startswith('get_first'):
        return 'int', f'({h})'
    if op == 'create':
        return 'int', '(void)' if fam in ('polygon',) else '(const char *name)'
    if op in ('delete','delete_all','unload','delete_members','disable','enable'):
        return 'void', '(void)' if op=='delete_all' else f'({h})'
    if op == 'get_name' or op.endswith('_name') and op.startswith('get'):
        return 'const char *', f'({h})'
    if op.startswith('set_') and op.endswith('name'):
        return 'void', f'({h}, const char *name)'
    if op == 'get_using_name' or op=='get_handle' or op.endswith('using_name'):
        return 'int', '(const char *name)'
    if op.startswith('get_save_flag'): return 'int', f'({h})'
    if op.startswith('set_save_flag'): return 'void', f'({h}, int flag)'
    if op.startswith('get_'):
        rest = op[4:]
        if rest in V3: return 'void', f'({h}, double out[3])'
        if any(k in rest for k in INTS): return 'int', f'({h})'
        return 'double', f'({h})'
    if op.startswith('set_'):
        rest = op[4:]
        if rest in V3: return 'void', f'({h}, const double value[3])'
        if any(k in rest for k in INTS): return 'void', f'({h}, int value)'
        return 'void', f'({h}, double value)'
    return 'int', f'({h})'
out = []
for n in names:
    ret, params = sig(n)
    if fam_is_engine := n.startswith('ZELMAR_engine_') or n.startswith('ZELMAR_3D_card_') or n.startswith('ZELMAR_utilities_'):
        if params.startswith('(int handle'):
            params = '(void)' if params == '(int handle)' else '(' + params[len('(int handle, '):]
    out.append(f'ZELMAR_OP({ret}, {n[7:]}, {params})')
open(sys.argv[2],'w').write('\n'.join(out)+'\n')
