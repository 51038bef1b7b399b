#!/bin/bash
# Makes the example scenes anew, through the program itself, so that each holds the properties and the
# results that the program saves.
#
#   examples/make_examples.sh [SSTR]      SSTR: the program; build/run/sstr/sstr when not given
#
# Angles in degrees, lengths in cm, weights in g, forces in kgf, moments in N·m. x to the figure's left, y up,
# z forward. The same program makes the same files.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
sstr="$(realpath "${1:-$here/../build/run/sstr/sstr}")"
cd "$here"

# make NAME OPTION...: a scene of the default human, changed and computed by the options.
make() {
    local scene="$1.json"
    shift
    "$sstr" new-scene ../figures/human.urdf "$scene" --name worker --force
    "$sstr" compute "$scene" "$@" --save "$scene" >/dev/null
    echo "examples/$scene"
}

# Lifts a 10 kg box with both hands: pelvis and spine bent forward by 70 degrees in all, feet apart,
# both soles on the floor, the left foot a step (25 cm) ahead. Half of the box's weight acts at the
# palms, half at the box's centre, 12 cm below and 5 cm ahead of them.
make lift_box --root 0,0,0,30,0,0 --floor \
    --angle waist=6 --angle l4_l5=8 --angle l3_l4=7 --angle l2_l3=6 --angle l1_l2=5 --angle t12_l1=3 \
    --angle t11_t12=3 --angle t10_t11=2 --angle base_of_neck=-20 --angle atlanto_occipital=-12 \
    --angle right_hip=69.9,11.2,-6.2 --angle right_knee=60.5 --angle right_ankle=19.5,4.5 \
    --angle left_hip=78.7,7.5,-3.6 --angle left_knee=41.6 --angle left_ankle=-7.5,2.3 \
    --angle right_clavicle_joint=0,8 --angle left_clavicle_joint=0,8 \
    --angle right_shoulder=70,4 --angle left_shoulder=70,4 --angle right_elbow=12 --angle left_elbow=12 \
    --weight right_hand.right_palmcenter=2500 --weight left_hand.left_palmcenter=2500 \
    --offset-load right_hand.right_palmcenter@17.4,-12,5=2500g \
    --offset-load left_hand.left_palmcenter@-17.4,-12,5=2500g

# Leans out over the right foot, the left leg stretched back, and presses a tool of 0.8 kg against
# something ahead: the tip, 25 cm ahead of the palm, is pushed back by 3 kgf. The left hand pulls at a
# rail with 2 kgf.
make one_foot_reach --strategy right-foot --root 0,0,0,28,0,0 --floor \
    --angle waist=4 --angle l4_l5=5 --angle l3_l4=4 --angle l2_l3=3 --angle l1_l2=2 --angle base_of_neck=-15 \
    --angle right_hip=53,-3.7,-10.4 --angle right_knee=39.1 --angle right_ankle=15,-7.7 \
    --angle left_hip=-20 --angle left_knee=20 --angle left_ankle=-20 \
    --angle right_clavicle_joint=5,15 --angle right_shoulder=120,10 --angle right_elbow=25 \
    --angle left_shoulder=20,35 --angle left_elbow=20 \
    --weight right_hand.right_palmcenter=800 \
    --offset-load right_hand.right_palmcenter@0,3,25=0,-0.5,-3 \
    --local-load left_hand.left_palmcenter=0,2,0

# Walks: the right leg stands nearly straight, the left one swings forward with a bent knee. A backpack
# of 8 kg hangs 15 cm behind the upper spine, the left hand carries a bag of 3 kg, and the wind pushes
# with 1.5 kgf.
make walking --strategy walking --root 0,0,0,3,0,0 --floor \
    --angle right_hip=10 --angle right_knee=8 --angle right_ankle=1 \
    --angle left_hip=28 --angle left_knee=55 --angle left_ankle=-5 \
    --angle right_shoulder=20,5 --angle right_elbow=25 --angle left_shoulder=-5,8 --angle left_elbow=5 \
    --weight left_hand.left_palmcenter=3000 \
    --offset-load t7.proximal@0,-5,-15=8000g \
    --load t10.proximal=0,0,-1.5

# Sits, leaning back a little, feet flat on the floor, forearms level: the right hand presses a part down
# and turns a screwdriver, the left hand holds a part of 1.2 kg.
make sitting --strategy sitting --root 0,0,0,-8,0,0 --floor \
    --angle waist=4 --angle l4_l5=4 --angle l3_l4=3 --angle base_of_neck=10 \
    --angle right_hip=88.4,7.9,1.8 --angle right_knee=102.6 --angle right_ankle=6.2,0.9 \
    --angle left_hip=89.5,8,0.7 --angle left_knee=95.6 --angle left_ankle=-1.8,-0.3 \
    --angle right_shoulder=25,8 --angle right_elbow=75 --angle left_shoulder=20,8 --angle left_elbow=80 \
    --load right_hand.right_palmcenter=0,2.5,-0.5 \
    --weight left_hand.left_palmcenter=1200 \
    --offset-load local:left_hand.left_palmcenter@0,0,8=0,0.3,0 \
    --torque right_wrist=0,0,1.2

# Sits on a high stool, feet hanging in boots of 1.2 kg each, a helmet of 1.5 kg on the head, and pulls
# a lever 10 cm ahead of the right palm.
make sitting_no_feet --strategy sitting-no-feet --root 0,80,0,-5,0,0 \
    --angle waist=3 --angle l4_l5=3 \
    --angle right_hip=75,6 --angle right_knee=65 --angle right_ankle=-20 \
    --angle left_hip=70,6 --angle left_knee=60 --angle left_ankle=-20 \
    --angle right_shoulder=55,5 --angle right_elbow=40 --angle left_shoulder=15,5 --angle left_elbow=60 \
    --weight head.distal=1500 --weight right_foot.sole=1200 --weight left_foot.sole=1200 \
    --load right_hand.right_palmcenter=0,0,0.5 \
    --offset-load right_hand.right_palmcenter@0,0,10=0,0,4

# On hands and knees: thighs and arms upright, the trunk rising a little to the shoulders. A tool bag of
# 4 kg lies 12 cm above the lower spine, and a lamp of 0.5 kg is worn on the forehead; a rope pulls
# backwards at the pelvis.
make hands_and_knees --strategy hands-and-knees --root 0,48,0,78,0,0 \
    --angle base_of_neck=-25 --angle atlanto_occipital=-15 \
    --angle right_hip=78 --angle right_knee=90 --angle right_ankle=-50 --angle right_ball=-10 \
    --angle left_hip=78 --angle left_knee=90 --angle left_ankle=-50 --angle left_ball=-10 \
    --angle right_shoulder=78,3 --angle left_shoulder=78,3 --angle right_elbow=0,80 --angle left_elbow=0,80 \
    --angle right_wrist=-62 --angle left_wrist=-62 \
    --offset-load l3.proximal@0,12,0=4000g \
    --weight head.eye_level=500 \
    --load lower_torso.center_of_mass=0,0,-1 \
    --local-load t5.proximal=0,-0.5,0
